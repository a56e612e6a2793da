// The stand-in simulator in a child process of its own, so that the memory and
// CPU this process shows are the session's alone. It is driven over one pipe
// and reports over another, with monotonic-clock stamps taken as things happen.
#pragma once

#include <sys/types.h>

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <string>
#include <thread>

namespace orv::bench {

class SimulatorProcess {
public:
    // Forks; call before this process starts any thread.
    explicit SimulatorProcess(std::chrono::milliseconds rearmDelay);
    ~SimulatorProcess();
    SimulatorProcess(const SimulatorProcess&) = delete;
    SimulatorProcess& operator=(const SimulatorProcess&) = delete;

    // Listening (again, on the same port); the stamp of the moment it listens, 0 on failure.
    int64_t Start();
    bool Stop();
    int Port() const;

    int Shots() const;
    // Waits for more than `count` shots; the stamp of the latest, 0 on time-out.
    int64_t WaitShotAfter(int count, std::chrono::milliseconds timeout) const;
    int Authentications() const;
    int64_t WaitAuthenticationAfter(int count, std::chrono::milliseconds timeout) const;

    static int64_t Now();

private:
    struct Event {
        int count = 0;
        int64_t stamp = 0;
    };
    static void Serve(int commands, int events, std::chrono::milliseconds rearmDelay);
    void ReadEvents();
    // Sends a command and waits for its acknowledgement; its stamp, 0 on failure.
    int64_t Issue(const std::string& command, const Event SimulatorProcess::*ack);
    int64_t WaitAfter(const Event SimulatorProcess::*event, int count,
                      std::chrono::milliseconds timeout) const;

    pid_t child_ = -1;
    int commands_ = -1;
    int events_ = -1;
    std::thread reader_;

    mutable std::mutex mutex_;  // guards everything below
    mutable std::condition_variable changed_;
    int port_ = 0;
    Event started_, stopped_, shots_, authentications_;
};

}  // namespace orv::bench
