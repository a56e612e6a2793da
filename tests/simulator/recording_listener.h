// A TruSim client listener that records every notification, safe against the
// client's concurrent notification threads.
#pragma once

#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "simulator/e6_trusim_client_callback.h"

namespace orv::test {

class RecordingListener : public E6TruSimClientCallback {
public:
    struct Counts {
        int connects = 0;
        int disconnects = 0;
    };

    void OnConnect() override {
        const std::lock_guard<std::mutex> lock(mutex_);
        ++counts_.connects;
    }
    void OnDisconnect() override {
        const std::lock_guard<std::mutex> lock(mutex_);
        ++counts_.disconnects;
    }
    void OnE6Auth(bool success) override {
        const std::lock_guard<std::mutex> lock(mutex_);
        auths_.push_back(success);
    }
    void OnE6PlayerData(E6PlayerData data) override {
        const std::lock_guard<std::mutex> lock(mutex_);
        players_.push_back(std::move(data));
        playerThreads_.push_back(std::this_thread::get_id());
    }
    void OnE6EnvironmentData(E6EnvironmentData data) override {
        const std::lock_guard<std::mutex> lock(mutex_);
        environments_.push_back(std::move(data));
    }
    void OnE6ArmState(int state) override {
        const std::lock_guard<std::mutex> lock(mutex_);
        armStates_.push_back(state);
    }
    void OnE6Warning(std::string text) override {
        const std::lock_guard<std::mutex> lock(mutex_);
        warnings_.push_back(std::move(text));
    }

    Counts counts() const { return Locked(counts_); }
    std::vector<bool> auths() const { return Locked(auths_); }
    std::vector<E6PlayerData> players() const { return Locked(players_); }
    std::vector<std::thread::id> playerThreads() const { return Locked(playerThreads_); }
    std::vector<E6EnvironmentData> environments() const { return Locked(environments_); }
    std::vector<int> armStates() const { return Locked(armStates_); }
    std::vector<std::string> warnings() const { return Locked(warnings_); }

private:
    template <typename T>
    T Locked(const T& value) const {
        const std::lock_guard<std::mutex> lock(mutex_);
        return value;
    }

    // Guards every record below.
    mutable std::mutex mutex_;
    Counts counts_;
    std::vector<bool> auths_;
    std::vector<E6PlayerData> players_;
    std::vector<std::thread::id> playerThreads_;
    std::vector<E6EnvironmentData> environments_;
    std::vector<int> armStates_;
    std::vector<std::string> warnings_;
};

}  // namespace orv::test
