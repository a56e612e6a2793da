// A TruSim client listener that writes every notification down as a short
// text, safe against the client's concurrent notification threads.
#pragma once

#include <algorithm>
#include <mutex>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "simulator/e6_trusim_client_callback.h"

namespace orv::test {

class RecordingListener : public E6TruSimClientCallback {
public:
    void OnConnect() override { Add("connect"); }
    void OnDisconnect() override { Add("disconnect"); }
    void OnE6Auth(bool success) override { Add(success ? "auth:1" : "auth:0"); }
    void OnE6PlayerData(E6PlayerData p) override {
        std::ostringstream text;
        text << "player:" << p.PlayerName << ',' << p.PlayerID << ',' << p.Handed << ',' << p.club
             << ',' << p.Handicap << ',' << p.CurrentTeeHeight << ',' << p.OnTheTee;
        Add(text.str(), std::this_thread::get_id());
    }
    void OnE6EnvironmentData(E6EnvironmentData data) override {
        std::ostringstream text;
        text << "environment:" << data.DistanceToPin << ',' << data.SurfaceCAT;
        Add(text.str());
    }
    void OnE6ArmState(int state) override { Add("arm:" + std::to_string(state)); }
    void OnE6Warning(std::string text) override { Add("warning:" + text); }

    // The notifications starting with `prefix`, in the order they came.
    std::vector<std::string> Of(const std::string& prefix = "") const {
        const std::lock_guard<std::mutex> lock(mutex_);
        std::vector<std::string> found;
        std::copy_if(events_.begin(), events_.end(), std::back_inserter(found),
                     [&](const std::string& event) { return event.starts_with(prefix); });
        return found;
    }
    size_t Count(const std::string& prefix) const { return Of(prefix).size(); }
    std::thread::id PlayerThread() const {
        const std::lock_guard<std::mutex> lock(mutex_);
        return playerThread_;
    }

private:
    void Add(std::string event, std::thread::id playerThread = {}) {
        const std::lock_guard<std::mutex> lock(mutex_);
        events_.push_back(std::move(event));
        if (playerThread != std::thread::id{}) {
            playerThread_ = playerThread;
        }
    }

    mutable std::mutex mutex_;  // guards the records below
    std::vector<std::string> events_;
    std::thread::id playerThread_;
};

}  // namespace orv::test
