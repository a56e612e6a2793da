#include "ble/worker_thread.h"

WorkerThread::~WorkerThread() {
    Terminate();
}

bool WorkerThread::Run() {
    std::lock_guard control(controlMutex_);
    if (thread_.joinable()) {
        return false;
    }
    {
        std::lock_guard lock(mutex_);
        queue_.clear();
        started_ = false;
        quit_ = false;
    }
    thread_ = std::thread(&WorkerThread::Loop, this);
    std::unique_lock lock(mutex_);
    cv_.wait(lock, [this] { return started_; });
    return true;
}

void WorkerThread::Terminate() {
    std::lock_guard control(controlMutex_);
    if (!thread_.joinable() || thread_.get_id() == std::this_thread::get_id()) {
        return;
    }
    {
        std::lock_guard lock(mutex_);
        quit_ = true;
    }
    cv_.notify_all();
    thread_.join();
}

bool WorkerThread::PostMessage(uint32_t message) {
    {
        std::lock_guard lock(mutex_);
        if (quit_) {
            return false;
        }
        queue_.push_back(message);
    }
    cv_.notify_all();
    return true;
}

bool WorkerThread::IsRunning() const {
    std::lock_guard lock(mutex_);
    return !quit_;
}

void WorkerThread::Loop() {
    OnThreadInit();
    {
        std::lock_guard lock(mutex_);
        started_ = true;
    }
    cv_.notify_all();
    while (true) {
        uint32_t message = 0;
        {
            std::unique_lock lock(mutex_);
            cv_.wait(lock, [this] { return quit_ || !queue_.empty(); });
            if (quit_) {
                queue_.clear();
                break;
            }
            message = queue_.front();
            queue_.pop_front();
        }
        OnThreadMessage(message);
    }
    OnThreadTerminate();
}
