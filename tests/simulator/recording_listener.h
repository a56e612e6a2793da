// A TruSim client listener that writes every notification down as a short
// text, safe against the client's concurrent notification threads.
#pragma once

#include <atomic>
#include <sstream>
#include <string>
#include <thread>

#include "simulator/e6_trusim_client_callback.h"
#include "tests/common/event_list.h"

namespace orv::test {

class RecordingListener : public E6TruSimClientCallback, public EventList {
public:
    void OnConnect() override { Add("connect"); }
    void OnDisconnect() override { Add("disconnect"); }
    void OnE6Auth(bool success) override { Add(success ? "auth:1" : "auth:0"); }
    void OnE6PlayerData(E6PlayerData p) override {
        std::ostringstream text;
        text << "player:" << p.PlayerName << ',' << p.PlayerID << ',' << p.Handed << ',' << p.club
             << ',' << p.Handicap << ',' << p.CurrentTeeHeight << ',' << p.OnTheTee;
        playerThread = std::this_thread::get_id();
        Add(text.str());
    }
    void OnE6EnvironmentData(E6EnvironmentData data) override {
        std::ostringstream text;
        text << "environment:" << data.DistanceToPin << ',' << data.SurfaceCAT;
        Add(text.str());
    }
    void OnE6ArmState(int state) override { Add("arm:" + std::to_string(state)); }
    void OnE6Warning(std::string text) override { Add("warning:" + text); }

    // The notifications starting with `prefix`.
    size_t Started(const std::string& prefix) const { return Of(prefix).size(); }

    std::atomic<std::thread::id> playerThread;
};

}  // namespace orv::test
