// The sensor link on a machine that is not fresh: bluetoothd already holds
// the sensor, another program scans, other devices pair, a connect hangs.
#include <gtest/gtest.h>

#include "tests/ble/bluez_rig.h"

namespace {

using namespace std::chrono_literals;
using orv::test::CountOf;
using orv::test::Eventually;
using orv::test::FakeDevice;
using orv::test::FakeDeviceConfig;
using States = std::vector<int32_t>;

TEST(BluezMachineState, SensorIsLinkedWhateverBluetoothdHoldsAlready) {
    struct Case {
        const char* name;
        bool connectedAtStart;  // left linked by a program that died
        bool otherScanner;      // RSSI present and still: no signal ever comes
        int hangingConnects;    // left pending, it would refuse the next as in progress
        States states;
        int scans;
        int connects;
        int disconnects;
    };
    const Case cases[] = {
        {"connected at start", true, false, 0, {1, 2, 3}, 1, 1, 0},
        {"another client scanning", false, true, 0, {1, 2, 3}, 1, 1, 0},
        {"connect times out", false, false, 1, {1, 2, 1, 2, 3}, 2, 2, 1},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        BluezRig machine;
        FakeDeviceConfig config = SensorDevice();
        config.connectedAtStart = c.connectedAtStart;
        config.hangingConnects = c.hangingConnects;
        FakeDevice& sensor = machine.bluez.AddDevice(config);
        if (c.otherScanner) {
            machine.bluez.AddOtherScanner();
        }
        ASSERT_TRUE(machine.Start(BluezRig::Timing(c.hangingConnects > 0 ? 300ms : 3s)));
        ASSERT_TRUE(machine.WaitState(3));
        EXPECT_EQ(machine.owner.States(), c.states);
        EXPECT_EQ(machine.bluez.DiscoveryStarts(), c.scans);
        EXPECT_EQ(sensor.Calls("Connect"), c.connects);
        EXPECT_EQ(sensor.Calls("Disconnect"), c.disconnects);
        EXPECT_TRUE(machine.Answers());
    }
}

TEST(BluezMachineState, AgentAnswersOnlyTheSensorBeingConnected) {
    BluezRig machine;
    FakeDeviceConfig config = SensorDevice();
    config.pairs = true;
    FakeDevice& sensor = machine.bluez.AddDevice(config);
    FakeDevice& headset =
        machine.bluez.AddDevice({.address = "C0:DE:5E:45:00:99", .name = "headset"});
    LogCapture log;
    ASSERT_TRUE(machine.Start());
    ASSERT_TRUE(machine.WaitState(3));
    EXPECT_EQ(sensor.PairingAnswer(), "482913");

    const std::string rejected = "org.bluez.Error.Rejected";
    struct Case {
        const char* method;
        orv::test::FakeBus::AgentAnswer sensor;  // error, value
    };
    const Case cases[] = {
        {"RequestPasskey", {"", "482913"}},
        {"RequestPinCode", {"", "7316"}},
        {"RequestConfirmation", {}},
        {"RequestAuthorization", {}},
        {"AuthorizeService", {rejected, ""}},  // the sensor needs no service of ours
        {"DisplayPasskey", {}},
        {"DisplayPinCode", {}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.method);
        const auto forSensor = machine.bluez.AskAgent(sensor, c.method);
        EXPECT_EQ(forSensor.error, c.sensor.error);
        EXPECT_EQ(forSensor.value, c.sensor.value);
        EXPECT_EQ(machine.bluez.AskAgent(headset, c.method).error, rejected);
    }
    EXPECT_EQ(CountOf(log.Text(), " refused, device:c0de5e450099\n"), 7u);
    EXPECT_EQ(CountOf(log.Text(), ")] Service authorization refused, device:c0de5e450001\n"), 1u);
    // The answers are the wrapper's, logged as it gives them.
    EXPECT_EQ(CountOf(log.Text(), ")] wclBthPasskeyRequest Pass key: 482913\n"), 2u);
    EXPECT_EQ(CountOf(log.Text(), ")] wclBthPinRequest Pin: 7316\n"), 1u);

    // Once its link is gone, the sensor is no longer answered either.
    sensor.Config().sensor->DropLink();
    ASSERT_TRUE(machine.WaitStates({1, 2, 3, 0, 1}));
    EXPECT_EQ(machine.bluez.AskAgent(sensor, "RequestPasskey").error, rejected);
}

}  // namespace
