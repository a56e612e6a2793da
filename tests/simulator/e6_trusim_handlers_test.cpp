// The client's reactions to single messages, without a connection.
#include <gtest/gtest.h>

#include <thread>

#include "common/debug_log.h"
#include "simulator/e6_trusim_client.h"
#include "tests/simulator/recording_listener.h"
#include "tests/support/test_support.h"

namespace {

using orv::test::CountOf;
using orv::test::Eventually;
using orv::test::RecordingListener;

class ClientHandlers : public ::testing::Test {
protected:
    ClientHandlers() { client.SetCallback(&listener); }
    ~ClientHandlers() override { client.Stop(); }

    // Handles `text` with the log on; returns what was printed.
    std::string Logged(const std::string& text, bool* handled = nullptr) {
        orv::test::StdoutCapture capture;
        ShowLog(true, true);
        const bool result = client.HandleRecvMsg(text);
        ShowLog(false, false);
        if (handled != nullptr) {
            *handled = result;
        }
        return capture.Text();
    }

    RecordingListener listener;
    E6TruSimClient client;
};

TEST_F(ClientHandlers, TypesThatAreNotUnderstood) {
    bool handled = true;
    std::string log = Logged("{\"Kind\":\"ACK\"}", &handled);
    EXPECT_FALSE(handled);
    EXPECT_EQ(CountOf(log, "[E6] << {\"Kind\":\"ACK\"}\n"), 1u) << log;
    EXPECT_FALSE(client.HandleRecvMsg("{\"Type\":\"Unknown\"}"));
    EXPECT_FALSE(client.HandleRecvMsg("{\"Type\":\"ack\"}"));  // case matters
    EXPECT_FALSE(client.HandleRecvMsg("[1,2]"));
    EXPECT_TRUE(client.HandleRecvMsg("{\"Type\":\"ACK\"}"));
    EXPECT_TRUE(client.HandleRecvMsg("{\"Type\":\"Pong\"}"));
}

TEST_F(ClientHandlers, MalformedMessagesAreLoggedAndDropped) {
    for (const char* text : {"", "{\"Type\":", "{\"Type\":5}", "{\"Type\":\"Authentication\"}",
                             "{\"Type\":\"Handshake\",\"Challenge\":1}",
                             "{\"Type\":\"SimCommand\",\"Command\":false}"}) {
        bool handled = false;
        const std::string log = Logged(text, &handled);
        EXPECT_TRUE(handled) << text;
        EXPECT_EQ(CountOf(log, "!!! ERROR"), 1u) << log;
        EXPECT_EQ(CountOf(log, "[E6TruSimClient::HandleRecvMsg("), 1u) << log;
        EXPECT_EQ(CountOf(log, ")] Error:"), 1u) << log;
    }
    EXPECT_EQ(client.GetArmState(), E6TruSimClient::kDisarmed);
}

TEST_F(ClientHandlers, AuthenticationResultInAnyForm) {
    std::string log = Logged("{\"Type\":\"Authentication\",\"Success\":false}");
    EXPECT_EQ(CountOf(log, "[E6TruSimClient::HandleAuth("), 1u) << log;
    EXPECT_EQ(CountOf(log, "Auth failed.\n"), 1u) << log;
    EXPECT_EQ(client.GetArmState(), E6TruSimClient::kDisarmed);
    EXPECT_FALSE(client.IsAuthenticated());

    EXPECT_TRUE(client.HandleRecvMsg("{\"Type\":\"Authentication\",\"Success\":\"False\"}"));
    EXPECT_EQ(client.GetArmState(), E6TruSimClient::kDisarmed);
    EXPECT_TRUE(client.HandleRecvMsg("{\"Type\":\"Authentication\",\"Success\":\"TRUE\"}"));
    EXPECT_EQ(client.GetArmState(), E6TruSimClient::kArmed);
    EXPECT_TRUE(client.IsAuthenticated());
    ASSERT_TRUE(Eventually([&] { return listener.auths().size() == 3; }));
    int successes = 0;
    for (bool ok : listener.auths()) {
        successes += ok ? 1 : 0;
    }
    EXPECT_EQ(successes, 1);
}

TEST_F(ClientHandlers, PlayerDataOnTheCallingThreadEnvironmentDataStored) {
    EXPECT_TRUE(client.HandleRecvMsg(
        "{\"Type\":\"DataModified\",\"PlayerData\":{\"PlayerName\":\"Ann\",\"PlayerID\":7,"
        "\"Handed\":\"Left\",\"Club\":\"sandwedge\",\"Handicap\":4.5,\"CurrentTeeHeight\":0.25,"
        "\"OnTheTee\":\"True\",\"Extra\":[1]},\"EnvironmentData\":{\"DistanceToPin\":123.5,"
        "\"SurfaceCAT\":\"Green\",\"BallPosition\":{\"x\":1.5,\"y\":\"2\",\"z\":-3}}}"));
    // Synchronous: recorded before HandleRecvMsg returned, on this thread.
    ASSERT_EQ(listener.players().size(), 1u);
    EXPECT_EQ(listener.playerThreads()[0], std::this_thread::get_id());
    const E6PlayerData player = listener.players()[0];
    EXPECT_EQ(player.PlayerName, "Ann");
    EXPECT_EQ(player.PlayerID, 7);
    EXPECT_EQ(player.Handed, "Left");
    EXPECT_EQ(player.club, 13u);
    EXPECT_EQ(player.Handicap, 4.5);
    EXPECT_EQ(player.CurrentTeeHeight, 0.25);
    EXPECT_TRUE(player.OnTheTee);
    EXPECT_EQ(client.GetCurrentClub(), 13u);

    EXPECT_EQ(client.GetDistanceToPin(), 123.5);
    EXPECT_EQ(client.GetSurfaceCategory(), "Green");
    EXPECT_EQ(client.GetBallPosition().x, 1.5);
    EXPECT_EQ(client.GetBallPosition().y, 0.0);  // not a number: ignored
    EXPECT_EQ(client.GetBallPosition().z, -3.0);
    ASSERT_TRUE(Eventually([&] { return listener.environments().size() == 1; }));
    EXPECT_EQ(listener.environments()[0].SurfaceCAT, "Green");

    // Missing members keep their defaults; an unknown club name gives 0.
    EXPECT_TRUE(
        client.HandleRecvMsg("{\"Type\":\"DataModified\",\"PlayerData\":{\"Club\":\"Spoon\"}}"));
    ASSERT_EQ(listener.players().size(), 2u);
    EXPECT_EQ(listener.players()[1].club, 0u);
    EXPECT_EQ(listener.players()[1].PlayerName, "");
    EXPECT_FALSE(listener.players()[1].OnTheTee);

    // A member of the wrong type drops the record, logged under the handler's name.
    const std::string log = Logged(
        "{\"Type\":\"DataModified\",\"PlayerData\":{\"Club\":\"Driver\",\"Handicap\":\"x\"}}");
    EXPECT_EQ(CountOf(log, "[E6TruSimClient::HandlePlayerData("), 1u) << log;
    EXPECT_EQ(listener.players().size(), 2u);
    EXPECT_EQ(client.GetCurrentClub(), 0u);

    // Disconnect resets the session values but not the arm state.
    client.Disconnect();
    EXPECT_EQ(client.GetDistanceToPin(), 0.0);
    EXPECT_EQ(client.GetSurfaceCategory(), "");
    EXPECT_EQ(client.GetBallPosition().z, 0.0);
    ASSERT_TRUE(Eventually([&] { return listener.counts().disconnects == 1; }));
}

TEST_F(ClientHandlers, WithoutListenerDataIsIgnoredAndWarningsAreNotSupported) {
    client.SetCallback(nullptr);
    EXPECT_TRUE(
        client.HandleRecvMsg("{\"Type\":\"DataModified\",\"PlayerData\":{\"Club\":\"Driver\"},"
                             "\"EnvironmentData\":{\"DistanceToPin\":80}}"));
    EXPECT_EQ(client.GetCurrentClub(), 0u);
    EXPECT_EQ(client.GetDistanceToPin(), 0.0);
    EXPECT_FALSE(client.HandleRecvMsg("{\"Type\":\"Warning\",\"ShotFailed\":\"x\"}"));
    EXPECT_TRUE(client.HandleRecvMsg("{\"Type\":\"SimCommand\",\"Command\":\"Arm\"}"));
    EXPECT_EQ(client.GetArmState(), E6TruSimClient::kArmed);
}

TEST_F(ClientHandlers, ArmCommandsAndWarnings) {
    EXPECT_TRUE(client.HandleRecvMsg("{\"Type\":\"SimCommand\",\"Command\":\"Arm\"}"));
    ASSERT_TRUE(Eventually([&] { return listener.armStates().size() == 1; }));
    EXPECT_TRUE(client.HandleRecvMsg("{\"Type\":\"SimCommand\",\"Command\":\"Disarm\"}"));
    ASSERT_TRUE(Eventually([&] { return listener.armStates().size() == 2; }));
    // Any other command passes the unchanged state on; none at all passes nothing.
    EXPECT_TRUE(client.HandleRecvMsg("{\"Type\":\"SimCommand\",\"Command\":\"arm\"}"));
    ASSERT_TRUE(Eventually([&] { return listener.armStates().size() == 3; }));
    EXPECT_TRUE(client.HandleRecvMsg("{\"Type\":\"SimCommand\"}"));
    EXPECT_EQ(listener.armStates(), (std::vector<int>{0, 1, 1}));
    EXPECT_EQ(client.GetArmState(), E6TruSimClient::kDisarmed);

    EXPECT_TRUE(client.HandleRecvMsg(
        "{\"Type\":\"Warning\",\"OutOfRange\":\"c\",\"Other\":\"x\",\"SetDataIgnored\":\"a\"}"));
    ASSERT_TRUE(Eventually([&] { return listener.warnings().size() == 2; }));
    std::vector<std::string> warnings = listener.warnings();
    std::sort(warnings.begin(), warnings.end());
    EXPECT_EQ(warnings, (std::vector<std::string>{"a", "c"}));
}

TEST_F(ClientHandlers, SendingWithoutLinkFailsQuietly) {
    EXPECT_FALSE(client.SendTruSimMessage("{\"Type\":\"Ping\"}"));
    EXPECT_FALSE(client.SendClubType(1));
    EXPECT_FALSE(client.IsConnected());
    EXPECT_FALSE(client.IsSocketOpen());
    // A handshake answer cannot go out without a link: not understood.
    EXPECT_FALSE(client.HandleRecvMsg("{\"Type\":\"Handshake\",\"Challenge\":\"abc\"}"));
}

TEST(ClientAddress, LocalAddressIsDottedIPv4) {
    const std::string address = E6TruSimClient::GetLocalIPAddress();
    int a, b, c, d;
    char tail;
    EXPECT_EQ(std::sscanf(address.c_str(), "%d.%d.%d.%d%c", &a, &b, &c, &d, &tail), 4) << address;
}

}  // namespace
