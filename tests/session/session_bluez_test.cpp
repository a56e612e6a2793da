// The session over the BlueZ backend: a fake bluetoothd on a private system
// bus with the virtual sensor behind its device, and the stand-in simulator.
#include "ble/bluez/make_bluez_stack.h"
#include "tests/ble/fake_bluez/fake_bluez.h"
#include "tests/ble/fake_bluez/private_system_bus.h"
#include "tests/session/session_fixture.h"

namespace orv::test {
namespace {

using namespace std::chrono_literals;

class SessionOverBluez : public SessionTest {
protected:
    PrivateSystemBus bus;  // outlives every client of the bus
    FakeBluez bluez;
};

TEST_F(SessionOverBluez, OneSwingBecomesOneShot) {
    ASSERT_TRUE(bus.ok());
    bluez.AddAdapter();
    FakeDeviceConfig device;
    device.address = "C0:DE:5E:45:00:01";
    device.name = "orvane-demo";
    device.sensor = sensor;
    bluez.AddDevice(device);
    ASSERT_TRUE(bluez.Start());

    config.makeBleStack = [] {
        BluezTiming timing;
        timing.adapterWait = 100ms;
        return MakeBluezStack(timing);
    };
    StartManager();
    ASSERT_TRUE(WaitReady());
    sensor->TriggerSwing(DriverSwing());
    ASSERT_TRUE(emulator->WaitForShots(1, 10s));
    EXPECT_TRUE(Eventually([&] { return ui.Count("shot") == 1; }));
    EXPECT_EQ(emulator->Shots().size(), 1u);
    EXPECT_EQ(manager->GetDeviceVersion(), "1.2.0");

    manager->Stop();
    manager.reset();
}

}  // namespace
}  // namespace orv::test
