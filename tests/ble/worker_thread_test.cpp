// The worker thread and the timer queue that the wrapper and the stacks run on.
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <future>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "ble/timer_queue.h"
#include "ble/worker_thread.h"
#include "tests/support/test_support.h"

namespace {

using namespace std::chrono_literals;
using orv::test::Eventually;

class RecordingWorker final : public WorkerThread {
public:
    ~RecordingWorker() override { Terminate(); }

    std::vector<std::string> Events() {
        std::lock_guard lock(mutex_);
        return events_;
    }
    bool AllOnOneOtherThread() {
        std::lock_guard lock(mutex_);
        return std::all_of(threads_.begin(), threads_.end(), [&](auto id) {
            return id == threads_.front() && id != std::this_thread::get_id();
        });
    }

private:
    void Record(std::string event) {
        std::lock_guard lock(mutex_);
        events_.push_back(std::move(event));
        threads_.push_back(std::this_thread::get_id());
    }
    void OnThreadInit() override { Record("init"); }
    void OnThreadMessage(uint32_t message) override { Record(std::to_string(message)); }
    void OnThreadTerminate() override { Record("terminate"); }

    std::mutex mutex_;  // guards events_, threads_
    std::vector<std::string> events_;
    std::vector<std::thread::id> threads_;
};

TEST(WorkerThread, HooksRunOnTheThreadInOrderAndItRestarts) {
    RecordingWorker worker;
    EXPECT_FALSE(worker.PostMessage(9));  // not running: refused
    ASSERT_TRUE(worker.Run());
    EXPECT_EQ(worker.Events(), (std::vector<std::string>{"init"}));  // Run waits for init
    EXPECT_FALSE(worker.Run());
    EXPECT_TRUE(worker.PostMessage(1) && worker.PostMessage(2) && worker.PostMessage(3));
    ASSERT_TRUE(Eventually([&] { return worker.Events().size() == 4; }));
    worker.Terminate();
    EXPECT_FALSE(worker.IsRunning());
    EXPECT_FALSE(worker.PostMessage(4));
    EXPECT_EQ(worker.Events(), (std::vector<std::string>{"init", "1", "2", "3", "terminate"}));
    EXPECT_TRUE(worker.AllOnOneOtherThread());

    ASSERT_TRUE(worker.Run());
    worker.Terminate();
    worker.Terminate();
    EXPECT_EQ(worker.Events().size(), 7u);
}

TEST(TimerQueue, RunsByDeadlineThenPostingOrderAndCancels) {
    TimerQueue queue;
    std::mutex mutex;
    std::vector<int> order;
    auto record = [&](int value) {
        return [&, value] {
            std::lock_guard lock(mutex);
            order.push_back(value);
        };
    };
    std::promise<void> gate;
    auto opened = gate.get_future().share();
    queue.Post([opened] { opened.wait(); });  // hold the queue while posting
    queue.PostAfter(30ms, record(4));
    queue.Post(record(1));
    const auto cancelled = queue.Post(record(99));
    queue.Post(record(2));
    queue.PostAfter(10ms, record(3));
    EXPECT_TRUE(queue.Cancel(cancelled));
    EXPECT_FALSE(queue.Cancel(cancelled));
    gate.set_value();
    ASSERT_TRUE(Eventually([&] {
        std::lock_guard lock(mutex);
        return order.size() == 4;
    }));
    EXPECT_EQ(order, (std::vector<int>{1, 2, 3, 4}));
}

TEST(TimerQueue, CancelAllWaitsForTheRunningTaskAndStopDropsLaterPosts) {
    TimerQueue queue;
    std::atomic<bool> started{false};
    std::atomic<bool> finished{false};
    std::atomic<int> ran{0};
    queue.Post([&] {
        started = true;
        std::this_thread::sleep_for(20ms);
        finished = true;
    });
    queue.PostAfter(5ms, [&] { ++ran; });
    ASSERT_TRUE(Eventually([&] { return started.load(); }));
    queue.CancelAll();
    EXPECT_TRUE(finished.load());
    queue.Stop();
    EXPECT_EQ(queue.Post([&] { ++ran; }), 0u);
    EXPECT_EQ(ran.load(), 0);
}

}  // namespace
