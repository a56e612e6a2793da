// The wrapper over the BlueZ backend against a fake bluetoothd on a private
// system bus: the whole path a user has, minus the radio.
#include <gtest/gtest.h>

#include <cstdlib>

#include "ble/bluez/make_bluez_stack.h"
#include "ble/btfr_gatt_wrapper.h"
#include "ble/virtual/sensor_gatt_ids.h"
#include "tests/ble/ble_test_helpers.h"
#include "tests/ble/fake_bluez/fake_bluez.h"
#include "tests/ble/fake_bluez/private_system_bus.h"

namespace {

using namespace std::chrono_literals;
using orv::test::CountOf;
using orv::test::Eventually;
using orv::test::FakeBluez;
using orv::test::FakeDevice;
using orv::test::FakeDeviceConfig;
using States = std::vector<int32_t>;
using Bytes = std::vector<uint8_t>;

FakeDeviceConfig Sensor(const std::string& address, const std::string& name) {
    FakeDeviceConfig config;
    config.address = address;
    config.name = name;
    config.sensor = QuickSensor(name);
    return config;
}

class BluezWrapperTest : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(bus_.ok()); }

    void TearDown() override {
        if (wrapper_) {
            wrapper_->Stop();
        }
    }

    static BluezTiming Timing() {
        BluezTiming timing;
        timing.connect = 3s;
        timing.resolve = 2s;
        timing.call = 3s;
        timing.adapterWait = 100ms;
        return timing;
    }

    void StartWrapper(const BluezTiming& timing = Timing()) {
        wrapper_ = MakeSensorWrapper(MakeBluezStack(timing), owner_, {50ms, 200ms});
        wrapper_->Start();
    }

    bool WaitState(int32_t state) {
        return Eventually([&] { return wrapper_->GetState() == state; });
    }

    bool WaitStates(const States& expected) {
        return Eventually([&] { return owner_.States() == expected; });
    }

    orv::test::PrivateSystemBus bus_;  // outlives every client of the bus
    FakeBluez bluez_;
    RecordingOwner owner_;
    std::unique_ptr<BtfrGattWrapper> wrapper_;
};

TEST_F(BluezWrapperTest, ScansConnectsSubscribesWritesAndReceives) {
    bluez_.AddAdapter();
    FakeDevice& device = bluez_.AddDevice(Sensor("C0:DE:5E:45:00:01", "orvane-demo"));
    ASSERT_TRUE(bluez_.Start());
    LogCapture log;
    StartWrapper();
    ASSERT_TRUE(WaitState(3));
    EXPECT_EQ(owner_.States(), (States{1, 2, 3}));
    EXPECT_EQ(bluez_.LastDiscoveryFilter(), "Transport=le");
    EXPECT_TRUE(device.Connected());
    EXPECT_TRUE(device.Notifying());
    EXPECT_EQ(device.StartNotifyCalls(), 1);
    const auto agent = bluez_.Agent();
    EXPECT_EQ(agent.path, "/org/orvane/agent");
    EXPECT_EQ(agent.capability, "KeyboardDisplay");
    EXPECT_TRUE(agent.isDefault);

    // A write reaches the sensor, which answers by notification.
    ASSERT_TRUE(wrapper_->WriteCharacteristic(kFirmwareRequest.data(), 3));
    ASSERT_TRUE(Eventually([&] { return owner_.Received(kFirmwareAnswer); }));
    ASSERT_EQ(device.Writes().size(), 1u);
    EXPECT_EQ(device.Writes()[0].value, kFirmwareRequest);
    EXPECT_EQ(device.Writes()[0].type, "command");
    EXPECT_EQ(device.Writes()[0].uuid, kSensorWriteUuid);

    // Repeated values arrive once per notification.
    const Bytes signal = {0x0F, 0x02, 0x00, 0x01, 0x0C};
    device.Notify(signal);
    device.Notify(signal);
    ASSERT_TRUE(Eventually([&] {
        const auto data = owner_.Data();
        return std::count(data.begin(), data.end(), signal) == 2;
    }));
    EXPECT_NE(log.Text().find(")] wclBthDeviceFound() name:orvane-demo, address:c0de5e450001\n"),
              std::string::npos);
    EXPECT_NE(log.Text().find(")] Connecting device:c0de5e450001\n"), std::string::npos);
}

TEST_F(BluezWrapperTest, SensorLeavingTheRangeIsRescannedUntilItComesBack) {
    bluez_.AddAdapter();
    FakeDevice& device = bluez_.AddDevice(Sensor("C0:DE:5E:45:00:01", "orvane-demo"));
    ASSERT_TRUE(bluez_.Start());
    StartWrapper();
    ASSERT_TRUE(WaitState(3));
    device.Config().sensor->DropLink();
    ASSERT_TRUE(WaitStates({1, 2, 3, 0, 1}));
    const int scans = bluez_.DiscoveryStarts();
    ASSERT_TRUE(Eventually([&] { return bluez_.DiscoveryStarts() >= scans + 2; }));
    EXPECT_EQ(device.ConnectCalls(), 1);
    device.Config().sensor->ComeBack();
    ASSERT_TRUE(WaitState(3));
    // The sensor answers on the new link.
    ASSERT_TRUE(wrapper_->WriteCharacteristic(kFirmwareRequest.data(), 3));
    EXPECT_TRUE(Eventually([&] { return owner_.Received(kFirmwareAnswer); }));
}

TEST_F(BluezWrapperTest, ServicesNeverResolvedCountAsAFailedConnect) {
    bluez_.AddAdapter();
    FakeDeviceConfig stuck = Sensor("C0:DE:5E:45:00:01", "orvane-stuck");
    stuck.resolveServices = false;
    FakeDevice& device = bluez_.AddDevice(stuck);
    ASSERT_TRUE(bluez_.Start());
    LogCapture log;
    BluezTiming timing = Timing();
    timing.resolve = 150ms;
    StartWrapper(timing);
    ASSERT_TRUE(Eventually([&] { return device.ConnectCalls() >= 2; }));
    // Connect errors go unreported: scans and connects alternate.
    const States states = owner_.States();
    for (size_t i = 0; i < states.size(); ++i) {
        ASSERT_EQ(states[i], (States{1, 2}[i % 2])) << ::testing::PrintToString(states);
    }
    EXPECT_GE(device.DisconnectCalls(), 1);
    EXPECT_NE(log.Text().find(")] wclGattClientConnect ret:00051007\n"), std::string::npos);
}

TEST_F(BluezWrapperTest, SystemBusDyingUnderALiveLinkIsLivedThrough) {
    bluez_.AddAdapter();
    bluez_.AddDevice(Sensor("C0:DE:5E:45:00:01", "orvane-demo"));
    ASSERT_TRUE(bluez_.Start());
    LogCapture log;
    StartWrapper();
    ASSERT_TRUE(WaitState(3));
    bus_.Kill();
    ASSERT_TRUE(WaitStates({1, 2, 3, 0}));
    const std::string gone = ")] createSystemBusConnection error:";
    ASSERT_TRUE(Eventually([&] { return CountOf(log.Text(), gone) == 1; }));
    EXPECT_FALSE(Eventually([&] { return owner_.States().size() > 4; }, 300ms));
    EXPECT_EQ(CountOf(log.Text(), gone), 1u);
    wrapper_->Stop();
    bluez_.Stop();
}

TEST_F(BluezWrapperTest, NameMatchesCaseSensitivelyAndFallsBackToAlias) {
    bluez_.AddAdapter();
    FakeDevice& upper = bluez_.AddDevice(Sensor("C0:DE:5E:45:00:01", "ORVANE-sensor"));
    FakeDeviceConfig aliasOnly = Sensor("C0:DE:5E:45:00:02", "unused");
    aliasOnly.name.reset();
    aliasOnly.alias = "my-orvane";
    FakeDevice& byAlias = bluez_.AddDevice(aliasOnly);
    ASSERT_TRUE(bluez_.Start());
    StartWrapper();
    ASSERT_TRUE(WaitState(3));
    EXPECT_TRUE(byAlias.Connected());
    EXPECT_EQ(upper.ConnectCalls(), 0);
}

TEST_F(BluezWrapperTest, WithoutAdapterTheStateStaysScanning) {
    ASSERT_TRUE(bluez_.Start());
    LogCapture log;
    StartWrapper();
    ASSERT_TRUE(WaitState(1));
    const int scans = bluez_.DiscoveryStarts();
    EXPECT_FALSE(Eventually([&] { return wrapper_->GetState() != 1; }, 500ms));
    EXPECT_EQ(owner_.States(), (States{1}));
    EXPECT_EQ(scans, 0);
    EXPECT_EQ(bluez_.DiscoveryStarts(), 0);
    EXPECT_EQ(CountOf(log.Text(), ")] No one Bluetooth Radio found.\n"), 1u);
    EXPECT_EQ(CountOf(log.Text(), ")] bluetoothd has no adapter\n"), 1u);
}

TEST_F(BluezWrapperTest, SwitchedOffAdapterIsWaitedOut) {
    bluez_.AddAdapter("hci0", false);
    FakeDevice& device = bluez_.AddDevice(Sensor("C0:DE:5E:45:00:01", "orvane-demo"));
    ASSERT_TRUE(bluez_.Start());
    LogCapture log;
    StartWrapper();
    EXPECT_FALSE(Eventually([&] { return wrapper_->GetState() != 0; }, 400ms));
    bluez_.SetPowered("hci0", true);
    ASSERT_TRUE(WaitState(3));
    EXPECT_TRUE(device.Connected());
    EXPECT_EQ(CountOf(log.Text(), ")] Every Bluetooth adapter is switched off\n"), 1u);
}

TEST_F(BluezWrapperTest, DeviceWithoutNotifiableCharacteristicIsDroppedEachTime) {
    bluez_.AddAdapter();
    FakeDeviceConfig mute = Sensor("C0:DE:5E:45:00:01", "orvane-mute");
    mute.services.back().characteristics.back().flags = {"read"};
    FakeDevice& device = bluez_.AddDevice(mute);
    ASSERT_TRUE(bluez_.Start());
    StartWrapper();
    ASSERT_TRUE(Eventually([&] { return owner_.States().size() >= 6; }));
    const States states = owner_.States();
    for (size_t i = 0; i < states.size(); ++i) {
        ASSERT_EQ(states[i], (States{1, 2, 0}[i % 3])) << ::testing::PrintToString(states);
    }
    EXPECT_GE(device.ConnectCalls(), 2);
    EXPECT_GE(device.DisconnectCalls(), 2);
    EXPECT_EQ(device.StartNotifyCalls(), 0);
}

TEST_F(BluezWrapperTest, FailedWriteDisconnectsAndTheLinkComesBack) {
    bluez_.AddAdapter();
    FakeDevice& device = bluez_.AddDevice(Sensor("C0:DE:5E:45:00:01", "orvane-demo"));
    ASSERT_TRUE(bluez_.Start());
    StartWrapper();
    ASSERT_TRUE(WaitState(3));
    device.FailWrites(true);
    EXPECT_FALSE(wrapper_->WriteCharacteristic(kFirmwareRequest.data(), 3));
    device.FailWrites(false);
    ASSERT_TRUE(WaitStates({1, 2, 3, 0, 1, 2, 3}));
    EXPECT_EQ(device.StopNotifyCalls(), 1);
    EXPECT_EQ(device.DisconnectCalls(), 1);
    ASSERT_TRUE(wrapper_->WriteCharacteristic(kFirmwareRequest.data(), 3));
}

TEST_F(BluezWrapperTest, StopTwiceLeavesNothingBehind) {
    bluez_.AddAdapter();
    FakeDevice& device = bluez_.AddDevice(Sensor("C0:DE:5E:45:00:01", "orvane-demo"));
    ASSERT_TRUE(bluez_.Start());
    StartWrapper();
    ASSERT_TRUE(WaitState(3));
    device.Config().sensor->Flood({0x0F, 0x02, 0x00, 0x01, 0x0C}, 500, 200);
    ASSERT_TRUE(Eventually([&] { return owner_.DataCount() > 5; }));
    wrapper_->Stop();
    const size_t calls = owner_.CallCount();
    wrapper_->Stop();
    EXPECT_EQ(wrapper_->GetState(), 0);
    EXPECT_FALSE(device.Connected());
    EXPECT_EQ(device.StopNotifyCalls(), 1);
    // Our connection is gone: bluetoothd forgets its agent and sessions.
    EXPECT_TRUE(Eventually([&] { return bluez_.Agent().owner.empty(); }));
    EXPECT_FALSE(bluez_.Discovering());
    std::this_thread::sleep_for(30ms);  // room for a stray callback to show up
    EXPECT_EQ(owner_.CallCount(), calls);
}

TEST_F(BluezWrapperTest, NoSystemBusAtAllIsWaitedOut) {
    const std::string address = bus_.address();
    setenv("DBUS_SYSTEM_BUS_ADDRESS", "unix:path=/nonexistent/orvane-test-bus", 1);
    LogCapture log;
    StartWrapper();
    EXPECT_FALSE(Eventually([&] { return !owner_.States().empty(); }, 300ms));
    wrapper_->Stop();
    setenv("DBUS_SYSTEM_BUS_ADDRESS", address.c_str(), 1);
    EXPECT_EQ(CountOf(log.Text(), ")] createSystemBusConnection error:"), 1u);
}

}  // namespace
