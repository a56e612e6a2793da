#include "tests/session/session_fixture.h"

#include "ble/virtual/virtual_stack.h"

namespace orv::test {

using namespace std::chrono_literals;

SwingValues DriverSwing(double distance) {
    // Head speed, path, face, tempo, distance, sensor speed.
    return SwingValues{94.5, -2.3, 1.4, 3.1, distance, 30.0};
}

void SessionTest::SetUp() {
    VirtualSensorTiming sensorTiming;
    sensorTiming.answerDelay = 1ms;
    sensorTiming.stepGap = 20ms;
    sensor = std::make_shared<VirtualSensor>("orvane-demo", sensorTiming);
    StartEmulator();
    config.makeBleStack = [this] {
        VirtualPeripheral peripheral;
        peripheral.address = 0xC0DE5E450001;
        peripheral.name = sensor->Name();
        peripheral.sensor = sensor;
        VirtualStackTiming stackTiming;
        stackTiming.connect = 5ms;
        auto stack = std::make_unique<VirtualStack>(stackTiming);
        stack->AddPeripheral(peripheral);
        return std::unique_ptr<BleStack>(std::move(stack));
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

}  // namespace orv::test
