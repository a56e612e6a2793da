// The least a simulator must do to take shots: answer the handshake and the
// challenge, give a club and arm once, then only read. It stamps the moment a
// read brings a SendShot, before any parsing, and never disarms, so a shot's
// time holds nothing of the simulator's own work.
#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <string>
#include <thread>

namespace orv::bench {

// A listening TCP socket on a free loopback port, -1 on failure (logged).
int ListenOnLoopback(int* port);

class ShotReader {
public:
    ShotReader();  // listens on a free loopback port
    ~ShotReader();
    ShotReader(const ShotReader&) = delete;
    ShotReader& operator=(const ShotReader&) = delete;

    int Port() const { return port_; }
    int Shots() const;
    // Waits for more than `count` shots; the stamp of the latest, 0 on time-out.
    int64_t WaitShotAfter(int count, std::chrono::milliseconds timeout) const;

private:
    void Serve();
    void Handle(int connection, const std::string& message, int64_t readAt);

    int port_ = 0;  // before listenFd_: its initialisation fills this in
    int listenFd_ = -1;
    std::atomic<int> connectionFd_{-1};
    std::atomic<bool> stopping_{false};
    std::string challenge_ = "0123456789abcdef0123456789abcdef";
    std::thread server_;

    mutable std::mutex mutex_;  // guards shots_ and shotAt_
    mutable std::condition_variable changed_;
    int shots_ = 0;
    int64_t shotAt_ = 0;
};

}  // namespace orv::bench
