// The wrapper over the BlueZ backend against a fake bluetoothd on a private
// system bus: the whole path a user has, minus the radio.
#include <gtest/gtest.h>

#include <functional>

#include "ble/virtual/sensor_gatt_ids.h"
#include "tests/ble/bluez_rig.h"

namespace {

using namespace std::chrono_literals;
using orv::test::CountOf;
using orv::test::Eventually;
using orv::test::FakeDevice;
using orv::test::FakeDeviceConfig;
using States = std::vector<int32_t>;
using Lines = std::vector<std::pair<std::string, size_t>>;  // and how often each shows

TEST(BluezWrapper, ScansConnectsSubscribesWritesAndReceives) {
    BluezRig rig;
    // Without a Name the Alias counts.
    FakeDeviceConfig aliasOnly = SensorDevice("unused");
    aliasOnly.name.reset();
    aliasOnly.alias = "my-orvane";
    FakeDevice& device = rig.bluez.AddDevice(aliasOnly);
    LogCapture log;
    ASSERT_TRUE(rig.Start());
    ASSERT_TRUE(rig.WaitState(3));
    EXPECT_EQ(rig.owner.States(), (States{1, 2, 3}));
    EXPECT_EQ(rig.bluez.LastDiscoveryFilter(), "le");
    EXPECT_EQ(device.Calls("StartNotify"), 1);
    const auto agent = rig.bluez.Agent();
    EXPECT_EQ(agent.capability, "KeyboardDisplay");
    EXPECT_TRUE(agent.isDefault);

    ASSERT_TRUE(rig.Answers());
    const orv::test::FakeWrite written{kFirmwareRequest, "command", kSensorWriteUuid};
    EXPECT_EQ(device.Writes(), std::vector{written});

    // Repeated values arrive once per notification.
    const std::vector<uint8_t> signal = {0x0F, 0x02, 0x00, 0x01, 0x0C};
    device.Config().sensor->SendLrSignal(0, 1);
    device.Config().sensor->SendLrSignal(0, 1);
    ASSERT_TRUE(Eventually([&] {
        const auto data = rig.owner.Data();
        return std::count(data.begin(), data.end(), signal) == 2;
    }));
    // Only the subscribed characteristic carries the sensor's data: not one
    // never subscribed to, nor an object the client does not know.
    const std::vector<uint8_t> stray = {0xBA, 0xD0};
    device.EmitValue(device.CharacteristicPath(kSensorWriteUuid), stray);
    device.EmitValue(device.Path() + "/service00ff/char0100", stray);
    device.EmitValue(device.CharacteristicPath(kSensorNotifyUuid), {0xC0, 0xDE});
    ASSERT_TRUE(Eventually([&] { return rig.owner.Received({0xC0, 0xDE}); }));
    EXPECT_FALSE(rig.owner.Received(stray));
    EXPECT_EQ(CountOf(log.Text(), ")] wclBthDeviceFound() name:my-orvane, address:c0de5e450001\n"),
              1u);
    EXPECT_EQ(CountOf(log.Text(), ")] Connecting device:c0de5e450001\n"), 1u);
}

// Link troubles after the sensor was reached: the owner hears 0 with the
// reason, the wrapper scans again and the sensor answers on the new link.
TEST(BluezWrapper, LinkTroubleIsReportedAndLivedThrough) {
    const std::string write = ")] Call disconnect(WriteCharacteristicValue)\n";
    const std::string disconnect = ")] Disconnect()\n";
    const std::string reason = ")] wclGattClientDisconnect reson:0005100";
    struct Case {
        const char* name;
        bool outOfRange;  // else a write fails
        int calls;        // StopNotify and Disconnect each
        Lines lines;
    };
    const Case cases[] = {
        {"out of range", true, 0, {{write, 0}, {disconnect, 0}, {reason + "b\n", 1}}},
        {"failed write", false, 1, {{write, 1}, {disconnect, 1}, {reason + "c\n", 1}}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        BluezRig rig;
        FakeDevice& device = rig.bluez.AddDevice(SensorDevice());
        ASSERT_TRUE(rig.Start());
        ASSERT_TRUE(rig.WaitState(3));
        LogCapture log;
        if (c.outOfRange) {
            device.Config().sensor->DropLink();
            ASSERT_TRUE(rig.WaitStates({1, 2, 3, 0, 1}));
            // Rescanned while away, without a connect attempt.
            const int scans = rig.bluez.DiscoveryStarts();
            ASSERT_TRUE(Eventually([&] { return rig.bluez.DiscoveryStarts() >= scans + 2; }));
            EXPECT_EQ(device.Calls("Connect"), 1);
            device.Config().sensor->ComeBack();
        } else {
            device.FailWrites(true);
            EXPECT_FALSE(rig.wrapper->WriteCharacteristic(kFirmwareRequest.data(), 3));
            device.FailWrites(false);
        }
        // Each scan while away is told again.
        EXPECT_TRUE(Eventually([&] {
            States states = rig.owner.States();
            states.erase(std::unique(states.begin(), states.end()), states.end());
            return states == States{1, 2, 3, 0, 1, 2, 3};
        })) << ::testing::PrintToString(rig.owner.States());
        EXPECT_EQ(device.Calls("StopNotify"), c.calls);
        EXPECT_EQ(device.Calls("Disconnect"), c.calls);
        for (const auto& [line, count] : c.lines) {
            EXPECT_EQ(CountOf(log.Text(), line), count) << line;
        }
        EXPECT_TRUE(rig.Answers());
    }
}

// Devices the wrapper cannot use are dropped and retried without end; a
// connect error is not reported to the owner.
TEST(BluezWrapper, UnusableDeviceIsRetried) {
    struct Case {
        const char* name;
        bool resolves;
        bool sensorService;
        States cycle;
        std::string line;
    };
    const Case cases[] = {
        {"services never resolved", false, true, {1, 2}, ")] wclGattClientConnect ret:00051007\n"},
        {"no sensor service", true, false, {1, 2, 0}, ")] GetService return false\n"},
        {"nothing to subscribe to", true, true, {1, 2, 0}, ")] Disconnect()\n"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        BluezRig rig;
        FakeDeviceConfig config = SensorDevice();
        config.resolveServices = c.resolves;
        config.sensorService = c.sensorService;
        config.notifies = false;
        FakeDevice& device = rig.bluez.AddDevice(config);
        LogCapture log;
        ASSERT_TRUE(rig.Start(BluezRig::Timing(3s, 150ms)));
        ASSERT_TRUE(Eventually([&] { return device.Calls("Connect") >= 2; }));
        const States states = rig.owner.States();
        for (size_t i = 0; i < states.size(); ++i) {
            ASSERT_EQ(states[i], c.cycle[i % c.cycle.size()]) << ::testing::PrintToString(states);
        }
        EXPECT_GE(device.Calls("Disconnect"), 1);
        EXPECT_EQ(device.Calls("StartNotify"), 0);
        EXPECT_GE(CountOf(log.Text(), c.line), 1u);
    }
}

// No adapter, or one switched off: nothing is scanned, the log says why
// once, and an adapter switched on is used.
TEST(BluezWrapper, MissingOrSwitchedOffAdapterIsWaitedOut) {
    for (const bool present : {false, true}) {
        BluezRig rig(false);
        if (present) {
            rig.bluez.AddAdapter(false);
            rig.bluez.AddDevice(SensorDevice());
        }
        LogCapture log;
        ASSERT_TRUE(rig.Start());
        ASSERT_TRUE(present || rig.WaitState(1));
        EXPECT_FALSE(
            Eventually([&] { return rig.wrapper->GetState() != (present ? 0 : 1); }, 400ms));
        EXPECT_EQ(rig.bluez.DiscoveryStarts(), 0);
        if (present) {
            EXPECT_EQ(CountOf(log.Text(), ")] Every Bluetooth adapter is switched off\n"), 1u);
            rig.bluez.PowerOn();
            EXPECT_TRUE(rig.WaitState(3));
        } else {
            EXPECT_EQ(rig.owner.States(), (States{1}));
            EXPECT_EQ(CountOf(log.Text(), ")] No one Bluetooth Radio found.\n"), 1u);
            EXPECT_EQ(CountOf(log.Text(), ")] bluetoothd has no adapter\n"), 1u);
        }
    }
}

// Stopping while notifications keep coming: once, for good. Started again,
// the wrapper lives through the system bus dying under it: state 0 once, one
// log line for its failed reconnections, no restart storm.
TEST(BluezWrapper, StopTwiceAndADyingBusLeaveNothingBehind) {
    BluezRig rig;
    FakeDevice& device = rig.bluez.AddDevice(SensorDevice());
    ASSERT_TRUE(rig.Start());
    ASSERT_TRUE(rig.WaitState(3));
    device.Config().sensor->Flood({0x0F, 0x02, 0x00, 0x01, 0x0C}, 500, 200);
    ASSERT_TRUE(Eventually([&] { return rig.owner.Data().size() > 5; }));
    LogCapture log;
    rig.StopWrapper();
    const size_t calls = rig.owner.CallCount();
    rig.StopWrapper();
    EXPECT_EQ(CountOf(log.Text(), ")] End\n"), 1u);
    EXPECT_EQ(rig.wrapper->GetState(), 0);
    EXPECT_FALSE(device.Connected());
    EXPECT_EQ(device.Calls("StopNotify"), 1);
    // Our connection is gone: bluetoothd forgets its agent.
    EXPECT_TRUE(Eventually([&] { return rig.bluez.Agent().owner.empty(); }));
    std::this_thread::sleep_for(30ms);  // room for a stray callback to show up
    EXPECT_EQ(rig.owner.CallCount(), calls);

    rig.owner.Clear();
    rig.wrapper->Start();
    ASSERT_TRUE(rig.WaitState(3));
    const std::string gone = ")] createSystemBusConnection error:";
    rig.bus.Kill();
    ASSERT_TRUE(rig.WaitStates({1, 2, 3, 0}));
    ASSERT_TRUE(Eventually([&] { return CountOf(log.Text(), gone) == 1; }));
    EXPECT_FALSE(Eventually([&] { return rig.owner.States().size() > 4; }, 300ms));
    EXPECT_EQ(CountOf(log.Text(), gone), 1u);
    rig.StopWrapper();
    rig.bluez.Stop();
}

}  // namespace
