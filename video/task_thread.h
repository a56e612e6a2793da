// One worker thread running posted tasks in order: the thread on which the
// capture manager handles its engine's events.
#pragma once

#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>

class TaskThread {
public:
    TaskThread();
    ~TaskThread();
    TaskThread(const TaskThread&) = delete;
    TaskThread& operator=(const TaskThread&) = delete;

    // Queues a task; ignored after Stop().
    void Post(std::function<void()> task);
    // Runs what is queued, then ends the thread. Not from the thread itself.
    void Stop();
    bool IsCurrent() const { return std::this_thread::get_id() == thread_.get_id(); }

private:
    void Run();

    std::mutex mutex_;  // guards tasks_ and stopping_
    std::condition_variable wake_;
    std::deque<std::function<void()>> tasks_;
    bool stopping_ = false;
    std::thread thread_;
};

// A counter of signals that waiters compare with the value they saw before
// asking for the work, so an old signal never satisfies a new wait.
class SignalCounter {
public:
    uint64_t Count();
    void Signal();
    // True once the count exceeds `seen`; false after the time-out.
    template <typename Duration>
    bool WaitBeyond(uint64_t seen, Duration timeout) {
        std::unique_lock lock(mutex_);
        return changed_.wait_for(lock, timeout, [&] { return count_ > seen; });
    }

private:
    std::mutex mutex_;  // guards count_
    std::condition_variable changed_;
    uint64_t count_ = 0;
};
