// The simulator on another computer: the settings' Host decides where the
// session connects, and a changed Host moves the link at its next attempt.
#include <gtest/gtest.h>

#include <fstream>

#include "app/simulator_host.h"
#include "ble/virtual/virtual_stack.h"
#include "common/settings.h"
#include "tests/support/test_support.h"
#include "tools/trusim-emulator/trusim_emulator.h"

namespace orv::test {
namespace {

using namespace std::chrono_literals;

bool ReachedBy(const TruSimEmulator& simulator) {
    return simulator.WaitUntil([&] { return simulator.IsClientAuthenticated(); }, 20s);
}

TEST(SimulatorHost, SettingsHostIsReachedAndAnEmptyOneMeansThisComputer) {
    // Both simulators on one port: only the address tells them apart.
    TruSimEmulator other({"127.0.0.2", 0});
    ASSERT_TRUE(other.Start());
    const std::string ownAddress = E6TruSimClient::GetLocalIPAddress();
    TruSimEmulator own({ownAddress, other.Port()});
    ASSERT_TRUE(own.Start()) << ownAddress;

    TempDir folder;
    std::ofstream(folder.path() / "settings.ini") << "[E6]\nHost=127.0.0.2\n";
    OrvSettings::GetInstanceIn(folder.path());
    Orvane::OrvManagerConfig config;
    config.makeBleStack = [] { return MakeVirtualStack({}); };
    config.simulatorPort = other.Port();
    config.e6Timing.reconnectPause = 50ms;
    Orvane::OrvManager manager;
    manager.SetConfig(WithSimulatorHost(config));
    manager.Start();
    EXPECT_TRUE(ReachedBy(other));
    EXPECT_EQ(own.Connections(), 0);

    // What the window does when the user clears the field and saves.
    manager.ChangeSimulatorHost("");
    EXPECT_TRUE(ReachedBy(own)) << ownAddress;
    EXPECT_TRUE(other.WaitForClientGone(5s));
    manager.Stop();

    // Saved with the other settings.
    OrvSettings::GetInstance()->SetSimulatorHost("e6-pc.lan");
    OrvSettings::GetInstance()->SaveSetting();
    OrvSettings::ReleaseInstance();
    EXPECT_EQ(OrvSettings(folder.path()).GetSimulatorHost(), "e6-pc.lan");
}

}  // namespace
}  // namespace orv::test
