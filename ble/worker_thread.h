// A thread with a message queue and three hooks, all run on the thread:
// OnThreadInit when it starts, OnThreadMessage per posted number, and
// OnThreadTerminate when it ends.
#pragma once

#include <condition_variable>
#include <cstdint>
#include <deque>
#include <mutex>
#include <thread>

class WorkerThread {
public:
    WorkerThread() = default;
    // A derived class calls Terminate() in its own destructor: the hooks are
    // virtual and must not run against a half-destroyed object.
    virtual ~WorkerThread();
    WorkerThread(const WorkerThread&) = delete;
    WorkerThread& operator=(const WorkerThread&) = delete;

    // Starts the thread and returns once OnThreadInit has run; false when the
    // thread is already running.
    bool Run();
    // Runs OnThreadTerminate on the thread and joins it. Messages not yet
    // handled are dropped. Not from the thread itself.
    void Terminate();
    // False when the thread is not running.
    bool PostMessage(uint32_t message);
    bool IsRunning() const;

protected:
    virtual void OnThreadInit() {}
    virtual void OnThreadMessage(uint32_t message) = 0;
    virtual void OnThreadTerminate() {}

private:
    void Loop();

    std::mutex controlMutex_;  // guards thread_ against concurrent Run/Terminate
    std::thread thread_;

    mutable std::mutex mutex_;  // guards queue_, started_, quit_
    std::condition_variable cv_;
    std::deque<uint32_t> queue_;
    bool started_ = false;
    bool quit_ = true;
};
