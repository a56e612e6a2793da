#pragma once

#include <condition_variable>
#include <memory>
#include <mutex>
#include <thread>

namespace Orvane {

// One of the manager's worker threads with the lock and signal it waits on.
struct WorkerRecord {
    std::unique_ptr<std::thread> thread;
    std::mutex mutex;  // guards what the worker's loop owns (its queue or its pass)
    std::condition_variable cv;

    // Wakes every waiter while holding the lock, so a worker about to wait
    // cannot miss the wake-up.
    void Broadcast() {
        std::lock_guard<std::mutex> lock(mutex);
        cv.notify_all();
    }
    void Join() {
        if (thread && thread->joinable()) {
            thread->join();
        }
    }
};

}  // namespace Orvane
