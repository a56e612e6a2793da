// The window hears the simulator link's state right, whatever order the
// link's notifications happen to run in.
#include <string>
#include <vector>

#include "tests/session/session_fixture.h"
#include "tests/support/loopback_peer.h"

namespace orv::test {
namespace {

using namespace std::chrono_literals;

TEST_F(SessionTest, EndRightAfterAuthenticationNeverLeavesTheWindowShowingConnected) {
    config.e6Timing.reconnectPause = 300ms;
    LoopbackPeer simulator;
    port = simulator.Port();
    LogCapture log;
    StartManager();
    ASSERT_TRUE(simulator.Accept());
    ASSERT_TRUE(simulator.Write(std::string(R"({"Type":"Authentication","Success":true})") + '\0' +
                                R"({"Type":"End"})" + '\0'));
    // Both notifications are in: the end shown, the authentication shown
    // before it or dropped.
    ASSERT_TRUE(Eventually([&] {
        return ui.Saw("e6:0") &&
               (ui.Saw("e6:1") || CountOf(log.Text(), "before its authentication was shown"));
    }));
    // The authentication's notification at its latest: after the link's end.
    manager->OnE6Auth(true);
    std::vector<std::string> shown;
    for (const std::string& event : ui.Events()) {
        if (event.starts_with("e6:")) {
            shown.push_back(event);
        }
    }
    EXPECT_EQ(shown.back(), "e6:0");

    // The next link starts unauthenticated until its own answer comes.
    ASSERT_TRUE(simulator.Accept());
    ASSERT_TRUE(Eventually([&] { return manager->GetE6()->IsConnected(); }));
    EXPECT_FALSE(manager->GetE6()->IsAuthenticated());
}

}  // namespace
}  // namespace orv::test
