// The window hears the simulator link's state right, whatever order the
// link's notifications happen to run in.
#include <algorithm>
#include <string>
#include <vector>

#include "tests/session/session_fixture.h"

namespace orv::test {
namespace {

using namespace std::chrono_literals;

TEST_F(SessionTest, EndRightAfterAuthenticationNeverLeavesTheWindowShowingConnected) {
    emulator->SetAnswerHandshake(false);
    config.e6Timing.reconnectPause = 300ms;
    LogCapture log;
    StartManager();
    ASSERT_TRUE(emulator->WaitForMessages(1, 10s));
    ASSERT_TRUE(emulator->SendRaw(std::string(R"({"Type":"Authentication","Success":true})") +
                                  '\0' + R"({"Type":"End"})" + '\0'));
    // Both notifications are in: the end shown, the authentication shown
    // before it or dropped.
    ASSERT_TRUE(Eventually([&] {
        return ui.Saw("e6:0") &&
               (ui.Saw("e6:1") || CountOf(log.Text(), "before its authentication was shown"));
    }));
    // The authentication's notification at its latest: after the link's end.
    manager->OnE6Auth(true);
    const std::vector<std::string> events = ui.Events();
    EXPECT_EQ(*std::find_if(events.rbegin(), events.rend(),
                            [](const std::string& e) { return e.starts_with("e6:"); }),
              "e6:0");

    // The next link starts unauthenticated until its own answer comes.
    ASSERT_TRUE(emulator->WaitForConnections(2, 10s));
    ASSERT_TRUE(Eventually([&] { return manager->GetE6()->IsConnected(); }));
    EXPECT_FALSE(manager->GetE6()->IsAuthenticated());
}

}  // namespace
}  // namespace orv::test
