// A whole session in one process: the manager with the in-process sensor and
// the stand-in simulator on real loopback TCP, with short intervals.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "ble/virtual/sensor_frames.h"
#include "ble/virtual/virtual_sensor.h"
#include "session/orv_manager.h"
#include "tests/common/event_list.h"
#include "tests/support/test_support.h"
#include "tools/trusim-emulator/trusim_emulator.h"

namespace orv::test {

// Records the session's UI callbacks.
class UiRecorder : public Orvane::OrvManagerCallback, public EventList {
public:
    void OnOrvE6ConnectionChanged(bool connected) override { Add(connected ? "e6:1" : "e6:0"); }
    void OnOrvOrvaneConnectionChanged(int state) override { Add("ble:" + std::to_string(state)); }
    void OnOrvOrvaneBatteryState(int percent) override {
        Add("battery:" + std::to_string(percent));
    }
    void OnOrvShot() override { Add("shot"); }
    void OnOrvReady() override { Add("ready"); }
};

// Stands in for the camera side: records what the session asks of it.
class RecordingProbe : public Orvane::RecordingControl, public EventList {
public:
    bool StartRecording() override {
        Add("start");
        return true;
    }
    void StopRecording(int delaySeconds) override { Add("stop:" + std::to_string(delaySeconds)); }
    void ShowRecordingFile() override { Add("show"); }
    void ClosePlayer() override { Add("close"); }
    bool IsRecordingAvailable() const override { return true; }
    std::string CurrentClip() override { return "/clips/MyRecord3.mp4"; }
};

class SessionTest : public ::testing::Test {
protected:
    void SetUp() override;
    void TearDown() override;

    // The simulator's port stays the same across its restarts.
    void StartEmulator();
    // `listener` stands in for the UI; null means the recorder `ui`.
    void StartManager(Orvane::OrvManagerCallback* listener = nullptr);
    // Sensor connected (firmware answered) and simulator authenticated and armed.
    bool WaitReady();
    // Frames the sensor received since the last clear, with `code` first.
    std::vector<SensorFrame> WrittenWithCode(uint8_t code) const;
    // The simulator's messages of the given "Type".
    std::vector<std::string> ReceivedOfType(const std::string& type) const;
    // One swing once ready; true when it arrives as exactly one more shot,
    // each of its four messages once and in order.
    bool SwingBecomesOneShot();

    std::shared_ptr<VirtualSensor> sensor;
    std::unique_ptr<orv::TruSimEmulator> emulator;
    int port = 0;
    // Between a shot and the simulator arming again; read by StartEmulator.
    std::chrono::milliseconds emulatorRearmDelay{100};
    Orvane::OrvManagerConfig config;
    UiRecorder ui;
    RecordingProbe recording;
    std::unique_ptr<Orvane::OrvManager> manager;
};

// A driver swing in the sensor's units.
SwingValues DriverSwing(double distance = 150.0);

// The four messages that make one shot, in the order they must arrive.
extern const std::vector<std::string> kShotTypes;
// The shot messages of `received` reduced to their "Type" names, in order.
std::vector<std::string> ShotSequence(const std::vector<std::string>& received);

}  // namespace orv::test
