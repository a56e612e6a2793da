// A whole session with the product's intervals: the manager in this process on
// a virtual sensor, the stand-in simulator in a child process over loopback
// TCP. Each measurement program builds one and prints its rows of the table.
#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "bench/session/shot_reader.h"
#include "bench/session/simulator_process.h"
#include "ble/virtual/virtual_sensor.h"
#include "session/orv_manager.h"
#include "tests/session/session_fixture.h"

namespace orv::bench {

// The sensor link's state as last reported to the user interface; keeps
// nothing per event, so memory over many swings is the session's own.
class LinkWatch : public Orvane::OrvManagerCallback {
public:
    void OnOrvE6ConnectionChanged(bool) override {}
    void OnOrvOrvaneConnectionChanged(int state) override { sensorState.store(state); }
    void OnOrvOrvaneBatteryState(int) override {}
    void OnOrvShot() override {}
    void OnOrvReady() override {}

    std::atomic<int> sensorState{0};
};

// Which simulator the session talks to.
enum class SimulatorKind {
    StandIn,     // the stand-in simulator in a child process
    ShotReader,  // a bare reader in this process that stamps shots on arrival
};

class BenchSession {
public:
    // Forks the stand-in simulator; construct before any other thread starts.
    // `rearmDelay` is its pause before it arms again after a shot.
    explicit BenchSession(SimulatorKind kind = SimulatorKind::StandIn,
                          std::chrono::milliseconds rearmDelay = std::chrono::milliseconds(0));
    ~BenchSession();

    // Starts the simulator and the manager; false unless both links are up within `timeout`.
    bool Start(std::chrono::seconds timeout = std::chrono::seconds(20));
    // Sensor connected, simulator authenticated and armed with a club.
    bool Ready() const;

    // One swing record handed straight to the manager; the microseconds until
    // the simulator has read its SendShot, negative when none came.
    double SwingMicros();

    std::unique_ptr<SimulatorProcess> simulator;  // with SimulatorKind::StandIn
    std::unique_ptr<ShotReader> reader;           // with SimulatorKind::ShotReader
    std::shared_ptr<VirtualSensor> sensor;
    LinkWatch watch;
    std::unique_ptr<Orvane::OrvManager> manager;

private:
    std::vector<uint8_t> swingFrame_;
};

// Resident memory of this process in KiB (VmRSS), 0 when unreadable.
long ResidentKb();
// The value below which `fraction` of `values` lie.
double Percentile(std::vector<double> values, double fraction);
// One row of the results table: what, measured, target, whether it is met.
void PrintRow(const std::string& what, const std::string& measured, const std::string& target,
              bool met);
// `value` with `decimals` digits after the point.
std::string Fixed(double value, int decimals);

}  // namespace orv::bench
