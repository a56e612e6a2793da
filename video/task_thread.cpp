#include "video/task_thread.h"

TaskThread::TaskThread() : thread_([this] { Run(); }) {}

TaskThread::~TaskThread() {
    Stop();
}

void TaskThread::Post(std::function<void()> task) {
    {
        std::lock_guard lock(mutex_);
        if (stopping_) {
            return;
        }
        tasks_.push_back(std::move(task));
    }
    wake_.notify_one();
}

void TaskThread::Stop() {
    {
        std::lock_guard lock(mutex_);
        stopping_ = true;
    }
    wake_.notify_one();
    if (thread_.joinable() && !IsCurrent()) {
        thread_.join();
    }
}

void TaskThread::Run() {
    std::unique_lock lock(mutex_);
    while (true) {
        wake_.wait(lock, [this] { return stopping_ || !tasks_.empty(); });
        if (tasks_.empty()) {
            return;  // stopping, and everything queued has run
        }
        std::function<void()> task = std::move(tasks_.front());
        tasks_.pop_front();
        lock.unlock();
        task();
        lock.lock();
    }
}

uint64_t SignalCounter::Count() {
    std::lock_guard lock(mutex_);
    return count_;
}

void SignalCounter::Signal() {
    {
        std::lock_guard lock(mutex_);
        ++count_;
    }
    changed_.notify_all();
}
