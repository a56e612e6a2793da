// The session over the BlueZ backend: a fake bluetoothd on a private system
// bus with the virtual sensor behind its device, and the stand-in simulator.
#include "tests/session/session_fixture.h"
#include "tests/session/session_over_bluez.h"

namespace orv::test {
namespace {

using namespace std::chrono_literals;

class SessionOverBluez : public SessionOverBluezOf<SessionTest> {};

TEST_F(SessionOverBluez, OneSwingBecomesOneShot) {
    ASSERT_TRUE(StartBluez());
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
