#include "ble/timer_queue.h"

TimerQueue::TimerQueue() : thread_(&TimerQueue::Loop, this) {}

TimerQueue::~TimerQueue() {
    Stop();
}

TimerQueue::TimerId TimerQueue::PostAfter(std::chrono::milliseconds delay, Task task) {
    TimerId id = 0;
    {
        std::lock_guard lock(mutex_);
        if (stop_) {
            return 0;
        }
        id = nextId_++;
        entries_.emplace(Clock::now() + delay, Entry{id, std::move(task)});
    }
    cv_.notify_all();
    return id;
}

bool TimerQueue::Cancel(TimerId id) {
    std::lock_guard lock(mutex_);
    for (auto it = entries_.begin(); it != entries_.end(); ++it) {
        if (it->second.id == id) {
            entries_.erase(it);
            return true;
        }
    }
    return false;
}

void TimerQueue::CancelAll() {
    std::unique_lock lock(mutex_);
    entries_.clear();
    if (!OnQueueThread()) {
        cv_.wait(lock, [this] { return !running_; });
    }
}

void TimerQueue::Stop() {
    {
        std::lock_guard lock(mutex_);
        stop_ = true;
        entries_.clear();
    }
    cv_.notify_all();
    if (thread_.joinable() && !OnQueueThread()) {
        thread_.join();
    }
}

void TimerQueue::Loop() {
    std::unique_lock lock(mutex_);
    while (!stop_) {
        if (entries_.empty()) {
            cv_.wait(lock);
            continue;
        }
        const auto first = entries_.begin();
        const Clock::time_point deadline = first->first;  // the entry may go while waiting
        if (deadline > Clock::now()) {
            cv_.wait_until(lock, deadline);
            continue;
        }
        Task task = std::move(first->second.task);
        entries_.erase(first);
        running_ = true;
        lock.unlock();
        task();
        task = nullptr;  // captured state dies outside the lock, before CancelAll returns
        lock.lock();
        running_ = false;
        cv_.notify_all();
    }
}
