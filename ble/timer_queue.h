// One thread that runs tasks in deadline order (posting order among equal
// deadlines): the event thread of the stacks and the clock of the virtual
// sensor.
#pragma once

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <map>
#include <mutex>
#include <thread>

class TimerQueue {
public:
    using Task = std::function<void()>;
    using TimerId = uint64_t;

    TimerQueue();
    ~TimerQueue();
    TimerQueue(const TimerQueue&) = delete;
    TimerQueue& operator=(const TimerQueue&) = delete;

    TimerId Post(Task task) { return PostAfter(std::chrono::milliseconds(0), std::move(task)); }
    TimerId PostAfter(std::chrono::milliseconds delay, Task task);
    // True when the task was removed before it started.
    bool Cancel(TimerId id);
    // Drops every pending task and, unless called from a task, waits for the
    // running one to finish.
    void CancelAll();
    // CancelAll, then ends the thread. Later posts are dropped.
    void Stop();
    bool OnQueueThread() const { return std::this_thread::get_id() == thread_.get_id(); }

private:
    using Clock = std::chrono::steady_clock;
    struct Entry {
        TimerId id;
        Task task;
    };

    void Loop();

    mutable std::mutex mutex_;  // guards entries_, nextId_, running_, stop_
    std::condition_variable cv_;
    std::multimap<Clock::time_point, Entry> entries_;
    TimerId nextId_ = 1;
    bool running_ = false;  // a task is executing
    bool stop_ = false;
    std::thread thread_;
};
