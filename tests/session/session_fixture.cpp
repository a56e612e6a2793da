#include "tests/session/session_fixture.h"

#include <algorithm>

#include "ble/virtual/virtual_stack.h"

namespace orv::test {

using namespace std::chrono_literals;

SwingValues DriverSwing(double distance) {
    // Head speed, path, face, tempo, distance, sensor speed.
    return SwingValues{94.5, -2.3, 1.4, 3.1, distance, 30.0};
}

void SessionTest::SetUp() {
    sensor = std::make_shared<VirtualSensor>(
        "orvane-demo", VirtualSensorTiming{.answerDelay = 1ms, .stepGap = 20ms});
    StartEmulator();
    config.makeBleStack = [this] {
        return std::unique_ptr<BleStack>(MakeVirtualStack(
            {{.address = 0xC0DE5E450001, .name = sensor->Name(), .sensor = sensor}},
            {.connect = 5ms}));
    };
    config.simulatorAddress = "127.0.0.1";
    config.simulatorPort = port;
    config.timing.connCheckInterval = 50ms;
    config.timing.freshLinkLimit = 300ms;
    config.timing.aliveLinkLimit = 1000ms;
    config.timing.pingInterval = 60000ms;  // tests that want pings shorten it themselves
    config.timing.lrSigDebounce = 100ms;
    config.timing.backSwingWait = 50ms;
    config.gattTiming.tick = 50ms;
    config.gattTiming.discovery = 100ms;
    config.e6Timing.reconnectPause = 100ms;
}

void SessionTest::TearDown() {
    if (manager) {
        manager->Stop();
        manager.reset();
    }
    if (emulator) {
        emulator->Stop();
    }
}

void SessionTest::StartEmulator() {
    emulator = std::make_unique<orv::TruSimEmulator>(
        orv::TruSimEmulatorOptions{"127.0.0.1", port, emulatorRearmDelay});
    ASSERT_TRUE(emulator->Start());
    port = emulator->Port();
}

void SessionTest::StartManager(Orvane::OrvManagerCallback* listener) {
    manager = std::make_unique<Orvane::OrvManager>();
    config.simulatorPort = port;
    manager->SetConfig(config);
    manager->SetCallback(listener != nullptr ? listener : &ui);
    manager->SetRecordingControl(&recording);
    manager->Start();
}

bool SessionTest::WaitReady() {
    return Eventually([&] {
        E6TruSimClient* client = manager->GetE6();
        return ui.Saw("ble:3") && client != nullptr && client->IsAuthenticated() &&
               client->GetArmState() == 0 && client->GetCurrentClub() != 0 &&
               manager->GetState().hands.load() != 0;
    });
}

std::vector<SensorFrame> SessionTest::WrittenWithCode(uint8_t code) const {
    std::vector<SensorFrame> frames;
    for (const SensorFrame& frame : sensor->WrittenFrames()) {
        if (!frame.empty() && frame[0] == code) {
            frames.push_back(frame);
        }
    }
    return frames;
}

std::vector<std::string> SessionTest::ReceivedOfType(const std::string& type) const {
    std::vector<std::string> texts;
    const std::string key = "\"Type\":\"" + type + "\"";
    for (const std::string& text : emulator->Received()) {
        if (text.find(key) != std::string::npos) {
            texts.push_back(text);
        }
    }
    return texts;
}

const std::vector<std::string> kShotTypes = {"SetBallData", "SetClubData", "SetMiscData",
                                             "SendShot"};

std::vector<std::string> ShotSequence(const std::vector<std::string>& received) {
    std::vector<std::string> types;
    for (const std::string& text : received) {
        for (const std::string& type : kShotTypes) {
            if (text.find("\"Type\":\"" + type + "\"") != std::string::npos) {
                types.push_back(type);
            }
        }
    }
    return types;
}

bool SessionTest::SwingBecomesOneShot() {
    // The sensor's last reported state is "connected" (an earlier connection
    // does not count), and the simulator is armed again after the last shot.
    const auto sensorUp = [&] {
        const std::vector<std::string> events = ui.Events();
        const auto last = std::find_if(events.rbegin(), events.rend(),
                                       [](const std::string& e) { return e.starts_with("ble:"); });
        return last != events.rend() && *last == "ble:3";
    };
    if (!WaitReady() || !Eventually(sensorUp)) {
        ADD_FAILURE() << "session not ready for a swing";
        return false;
    }
    const size_t shots = emulator->Shots().size();
    const size_t seen = emulator->Received().size();
    sensor->TriggerSwing(DriverSwing());
    if (!emulator->WaitForShots(shots + 1, 10s)) {
        ADD_FAILURE() << "the swing never became a shot";
        return false;
    }
    const std::vector<std::string> all = emulator->Received();
    const std::vector<std::string> fresh(all.begin() + static_cast<std::ptrdiff_t>(seen),
                                         all.end());
    EXPECT_EQ(ShotSequence(fresh), kShotTypes);
    EXPECT_EQ(emulator->Shots().size(), shots + 1);
    return ShotSequence(fresh) == kShotTypes && emulator->Shots().size() == shots + 1;
}

}  // namespace orv::test
