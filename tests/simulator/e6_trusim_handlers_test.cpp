// The client's reactions to single messages, without a connection.
#include <gtest/gtest.h>

#include "common/debug_log.h"
#include "simulator/e6_trusim_client.h"
#include "tests/simulator/recording_listener.h"
#include "tests/support/test_support.h"

namespace {

using orv::test::CountOf;
using orv::test::Eventually;
using orv::test::RecordingListener;
using Events = std::vector<std::string>;
constexpr int kArmed = E6TruSimClient::kArmed;
constexpr int kDisarmed = E6TruSimClient::kDisarmed;

TEST(ClientHandlers, EachMessageGivesItsNotificationsStateAndLogLine) {
    const char* const kError = ")] Error:";
    const struct {
        const char* text;
        bool handled;
        Events heard;                // in any order: notifications may overtake each other
        const char* line = nullptr;  // in the log once
        int arm = kDisarmed;
        unsigned club = 0;
        bool listening = true;
    } rows[] = {
        // clang-format off
        {R"({"Kind":"ACK"})", false, {}, "[E6] << {\"Kind\":\"ACK\"}\n"},
        {R"({"Type":"ack"})", false, {}},  // case matters
        {"[1,2]", false, {}},
        {R"({"Type":"ACK"})", true, {}},
        {R"({"Type":"Pong"})", true, {}},
        {R"({"Type":5})", true, {}, kError},
        {R"({"Type":"Authentication"})", true, {}, kError},
        {R"({"Type":"SimCommand","Command":false})", true, {}, kError},
        // Without a link a handshake cannot be answered.
        {R"({"Type":"Handshake","Challenge":"abc"})", false, {}},
        {R"({"Type":"Authentication","Success":false})", true, {"auth:0"}, "Auth failed.\n"},
        {R"({"Type":"Authentication","Success":"true "})", true, {"auth:0"}},
        {R"({"Type":"Authentication","Success":"TRUE"})", true, {"auth:1"}, nullptr, kArmed},
        {R"({"Type":"SimCommand","Command":"Arm"})", true, {"arm:0"}, nullptr, kArmed},
        {R"({"Type":"SimCommand","Command":"Disarm"})", true, {"arm:1"}},
        // Any other command passes the unchanged state on; none at all passes nothing.
        {R"({"Type":"SimCommand","Command":"arm"})", true, {"arm:1"}},
        {R"({"Type":"SimCommand"})", true, {}},
        {R"({"Type":"Warning","OutOfRange":"c","Other":"x","SetDataIgnored":"a"})", true,
         {"warning:a", "warning:c"}},
        {R"({"Type":"DataModified","PlayerData":{"Club":"sandwedge","Handed":"Left",)"
         R"("OnTheTee":"True","Extra":[1]},"EnvironmentData":{"SurfaceCAT":"Green"}})",
         true, {"environment:0,Green", "player:,0,Left,13,0,0,1"}, nullptr, kDisarmed, 13},
        // Missing members keep their defaults; an unknown club name gives 0.
        {R"({"Type":"DataModified","PlayerData":{"Club":"Spoon"}})", true, {"player:,0,,0,0,0,0"}},
        // A member of the wrong type drops the record, logged under the handler's name.
        {R"({"Type":"DataModified","PlayerData":{"Club":"Driver","Handicap":"x"}})", true, {},
         "[E6TruSimClient::HandlePlayerData("},
        // Nobody to tell: data is not taken in, warnings are not understood.
        {R"({"Type":"DataModified","PlayerData":{"Club":"Driver"}})", true, {}, 0, kDisarmed, 0,
         false},
        {R"({"Type":"Warning","ShotFailed":"x"})", false, {}, 0, kDisarmed, 0, false},
        {R"({"Type":"SimCommand","Command":"Arm"})", true, {}, 0, kArmed, 0, false},
        // clang-format on
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.text);
        RecordingListener listener;
        E6TruSimClient client;
        client.SetCallback(row.listening ? &listener : nullptr);
        std::string log;
        {
            orv::test::StdoutCapture capture;
            ShowLog(true, true);
            EXPECT_EQ(client.HandleRecvMsg(row.text), row.handled);
            ShowLog(false, false);
            log = capture.Text();
        }
        EXPECT_TRUE(Eventually([&] {
            Events heard = listener.Of();
            std::sort(heard.begin(), heard.end());
            return heard == row.heard;
        })) << testing::PrintToString(listener.Of());
        EXPECT_EQ(client.GetArmState(), row.arm);
        EXPECT_EQ(client.GetCurrentClub(), row.club);
        EXPECT_EQ(CountOf(log, row.line != nullptr ? row.line : kError), row.line ? 1u : 0u) << log;
        client.Stop();
    }
}

TEST(ClientHandlers, PlayerDataOnTheCallingThreadAndDisconnectForgetsTheSessionValues) {
    RecordingListener listener;
    E6TruSimClient client;
    client.SetCallback(&listener);
    EXPECT_TRUE(client.HandleRecvMsg(
        R"({"Type":"DataModified","PlayerData":{"PlayerName":"Ann","PlayerID":7,"Handicap":4.5,)"
        R"("CurrentTeeHeight":0.25},"EnvironmentData":{"DistanceToPin":123.5,)"
        R"("BallPosition":{"x":1.5,"y":"2","z":-3}}})"));
    // Synchronous: recorded before HandleRecvMsg returned, on this thread.
    EXPECT_EQ(listener.Of("player:"), Events{"player:Ann,7,,0,4.5,0.25,0"});
    EXPECT_EQ(listener.playerThread.load(), std::this_thread::get_id());
    EXPECT_EQ(client.GetDistanceToPin(), 123.5);
    EXPECT_EQ(client.GetBallPosition().x, 1.5);
    EXPECT_EQ(client.GetBallPosition().y, 0.0);  // not a number: ignored
    EXPECT_EQ(client.GetBallPosition().z, -3.0);

    client.Disconnect();
    EXPECT_EQ(client.GetDistanceToPin(), 0.0);
    EXPECT_EQ(client.GetSurfaceCategory(), "");
    EXPECT_EQ(client.GetBallPosition().z, 0.0);
    EXPECT_TRUE(Eventually([&] { return listener.Count("disconnect") == 1; }));
    client.Stop();
}

}  // namespace
