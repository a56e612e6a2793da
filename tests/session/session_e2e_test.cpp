// The session end to end: the in-process sensor on one side, the stand-in
// simulator over real loopback TCP on the other.
#include <algorithm>

#include "common/debug_log.h"
#include "protocol/command_models.h"
#include "simulator/club_tables.h"
#include "simulator/shot_records.h"
#include "simulator/trusim_messages.h"
#include "tests/session/session_fixture.h"

namespace orv::test {
namespace {

using namespace std::chrono_literals;
using Bytes = std::vector<uint8_t>;

Bytes FrameOf(OrvCmdBaseModel&& command) {
    bb* frame = command.MakeSendPacket();
    return Bytes(frame->data, frame->data + frame->size);
}

class SessionE2E : public SessionTest {};

TEST_F(SessionE2E, ConnectAsksFirmwareFirstThenClubAndSyncsStateAfterTheVersion) {
    emulator->Stop();  // no simulator: the sensor's own club is asked for
    StartManager();
    ASSERT_TRUE(Eventually([&] { return ui.Saw("ble:3"); }));
    ASSERT_TRUE(Eventually([&] { return !WrittenWithCode(ORV_COMMAND_STATE_SYNC).empty(); }));
    ASSERT_TRUE(
        Eventually([&] { return !WrittenWithCode(ORV_COMMAND_MANUAL_CLUB_SELECT).empty(); }));

    const std::vector<SensorFrame> written = sensor->WrittenFrames();
    ASSERT_GE(written.size(), 3u);
    EXPECT_EQ(written[0], (Bytes{0x12, 0x00, 0x12}));  // firmware version first
    EXPECT_EQ(written[1], (Bytes{0x0C, 0x00, 0x0C}));  // then the club
    EXPECT_EQ(WrittenWithCode(ORV_COMMAND_STATE_SYNC)[0],
              (Bytes{0x0A, 0x03, 0x02, 0x03, 0x00, 0x08}));
    // The first club report is answered with the user's sensitivity row (driver, level 1).
    EXPECT_EQ(
        WrittenWithCode(ORV_COMMAND_MANUAL_CLUB_SELECT)[0],
        (Bytes{0x18, 0x0A, 0x01, 0xFF, 0xBA, 0x00, 0x32, 0x50, 0x03, 0xE8, 0x08, 0x98, 0x4F}));
    EXPECT_EQ(manager->GetDeviceVersion(), "1.2.0");
    // The UI hears "connected" only with the firmware version, after 1 and 2.
    const auto events = ui.Events();
    const auto connected = std::find(events.begin(), events.end(), "ble:3");
    EXPECT_NE(std::find(events.begin(), connected, "ble:2"), connected);
}

TEST_F(SessionE2E, ClubFollowsEitherSideAndLeftRightSignalsByTheirSum) {
    StartManager();
    ASSERT_TRUE(WaitReady());

    // The sensor's gap wedge is the simulator's sand wedge.
    emulator->ClearReceived();
    sensor->SendFrame(ClubInfoFrame(12));
    ASSERT_TRUE(Eventually([&] { return !ReceivedOfType("SetClubType").empty(); }));
    EXPECT_EQ(ReceivedOfType("SetClubType")[0], R"({"Type":"SetClubType","ClubType":"SWedge"})");

    // The simulator's 3-iron is the sensor's club 4.
    sensor->ClearWrittenFrames();
    emulator->SetClub("3Iron");
    ASSERT_TRUE(emulator->SendPlayerData());
    ASSERT_TRUE(
        Eventually([&] { return !WrittenWithCode(ORV_COMMAND_MANUAL_CLUB_SELECT).empty(); }));
    EXPECT_EQ(WrittenWithCode(ORV_COMMAND_MANUAL_CLUB_SELECT)[0],
              FrameOf(MakeClubSelectCommand(4, 1)));
    // The sensor confirms club 4, which the simulator already has as 16: nothing more is sent.
    ASSERT_TRUE(Eventually([&] { return manager->GetState().clubCode.load() == 4; }));
    EXPECT_EQ(manager->GetE6()->GetCurrentClub(), 16u);

    // 3-iron + 4 steps of the ring: 4, 5, 6 and 7 iron, as one change.
    sensor->ClearWrittenFrames();
    sensor->SendLrSignal(0, 1);
    sensor->SendLrSignal(0, 2);
    sensor->SendLrSignal(0, 1);
    ASSERT_TRUE(
        Eventually([&] { return !WrittenWithCode(ORV_COMMAND_MANUAL_CLUB_SELECT).empty(); }));
    std::this_thread::sleep_for(300ms);  // a second change would come within one debounce
    const auto selects = WrittenWithCode(ORV_COMMAND_MANUAL_CLUB_SELECT);
    ASSERT_EQ(selects.size(), 1u);
    EXPECT_EQ(selects[0][2], 8);
}

TEST_F(SessionE2E, OnlyAFinishedSwingLongEnoughOrPuttedIsAShotOfTheFourMessages) {
    config.timing.backSwingWait = 150ms;  // time-out 1.2 s after the back swing
    StartManager();
    ASSERT_TRUE(WaitReady());
    emulator->ClearReceived();
    sensor->ClearWrittenFrames();

    // Abandoned on the back swing: the clip ends at once, and the back-swing
    // time-out, ended with it, never stops the clip a second time.
    LogCapture log;
    sensor->TriggerAbortedSwing();
    ASSERT_TRUE(Eventually([&] { return recording.Count("stop:0") == 1; }));
    EXPECT_EQ(CountOf(log.Text(), "] Abort step: 3\n"), 1u);
    EXPECT_FALSE(Eventually([&] { return CountOf(log.Text(), "Back swing timeout.\n") > 0; }, 2s));
    EXPECT_EQ(recording.Count("stop:0"), 1);

    sensor->TriggerSwing(DriverSwing(4.9));  // a waggle
    sensor->TriggerSwing(DriverSwing(150.0));
    ASSERT_TRUE(emulator->WaitForShots(1, 10s));
    ASSERT_TRUE(Eventually([&] { return ui.Count("shot") == 1; }));
    // The long swing's own values; the ball's flight from them is checked on its own.
    const double distanceToPin = manager->GetE6()->GetDistanceToPin();
    ASSERT_GT(distanceToPin, 0.0);
    const std::string expected[][2] = {
        {"SetBallData",
         E6_GetBallDataJson(E6_MakeBallData(1, 1, 94.5, -2.3, 1.4, 150.0 / distanceToPin))},
        {"SetClubData", R"({"Type":"SetClubData","ClubData":{"ClubAngleFace":1.400, )"
                        R"("ClubAnglePath":-2.300, "ClubHeadSpeed":94.500}})"},
        {"SetMiscData", R"({"Type":"SetMiscData", "MiscData":{"TeeHeight":0.200, "TeeType":0, )"
                        R"("TeedUp":"true"}})"},
        {"SendShot", R"({"Type":"SendShot"})"},
    };
    for (const auto& [type, text] : expected) {
        EXPECT_EQ(ReceivedOfType(type), std::vector<std::string>{text});
    }
    // Each swing's clip started at address; only the shot's ran two seconds past the swing.
    EXPECT_EQ(recording.Count("start"), 3);
    EXPECT_EQ(recording.Count("stop:2"), 1);
    // After the shot the sensor is told to hold (system setting flag 0).
    ASSERT_TRUE(Eventually([&] {
        return std::ranges::count(WrittenWithCode(ORV_COMMAND_SYSTEM_SETTING),
                                  FrameOf(OrvCmdSystemSettingModel(0, 0, 1, 0))) > 0;
    }));
    // The simulator disarms after the shot: the clip is shown.
    EXPECT_TRUE(Eventually([&] { return recording.Count("show") == 1; }));

    // Armed again, the simulator is told the club in hand; a change after that sticks.
    ASSERT_TRUE(Eventually([&] {
        const std::vector<std::string> got = emulator->Received();
        return std::any_of(
            std::find(got.begin(), got.end(), expected[3][1]), got.end(),
            [](const std::string& text) { return text.find("SetClubType") != std::string::npos; });
    }));
    emulator->SetClub("Putter");
    ASSERT_TRUE(emulator->SendPlayerData());
    // Until the sensor's own report of the putter is handled, a late report of the driver
    // would still hand the simulator the driver.
    ASSERT_TRUE(Eventually([&] {
        return manager->GetE6()->GetCurrentClub() == 15u && manager->GetState().clubCode == 15;
    }));
    SwingValues putt = DriverSwing(4.9);
    putt.headSpeed = 2.0;
    sensor->TriggerSwing(putt);
    ASSERT_TRUE(emulator->WaitForShots(2, 10s));
    EXPECT_EQ(emulator->Shots()[1].club, "Putter");
}

TEST_F(SessionE2E, PingPassWaitsBehindQueuedCommandsWhichStopFreesAndTheSessionRestarts) {
    const int threadsBefore = ThreadCount();
    config.timing.pingInterval = 300ms;
    StartManager();
    ASSERT_TRUE(WaitReady());
    ASSERT_TRUE(Eventually([&] { return !WrittenWithCode(ORV_COMMAND_TIME_SYNC_REQ).empty(); }));
    ASSERT_TRUE(Eventually([&] { return !WrittenWithCode(ORV_COMMAND_BATTERY_REQ).empty(); }));
    const SensorFrame time = WrittenWithCode(ORV_COMMAND_TIME_SYNC_REQ)[0];
    ASSERT_EQ(time.size(), 7u);
    EXPECT_LT(time[2], 24);
    EXPECT_LT(time[3], 60);
    EXPECT_EQ(time[5], 1);
    EXPECT_TRUE(Eventually([&] { return !ReceivedOfType("Ping").empty(); }));
    const std::string battery = "battery:" + std::to_string(sensor->Battery());
    ASSERT_TRUE(Eventually([&] { return ui.Saw(battery); }));

    // Right after a pass's battery answer its commands are all written; those
    // queued now without waking the send thread keep the queue busy, and the
    // passes that follow ping the simulator but ask the sensor nothing.
    const int answered = ui.Count(battery);
    ASSERT_TRUE(Eventually([&] { return ui.Count(battery) > answered; }));
    sensor->ClearWrittenFrames();
    OrvCmdModel waiting(ORV_COMMAND_ECHO);
    for (int i = 0; i < 50; ++i) {
        manager->PushSendQ(waiting);
    }
    const size_t pings = ReceivedOfType("Ping").size();
    ASSERT_TRUE(Eventually([&] { return ReceivedOfType("Ping").size() >= pings + 3; }));
    EXPECT_TRUE(sensor->WrittenFrames().empty());

    manager->Stop();  // frees what is still queued
    EXPECT_FALSE(manager->IsRunning());
    EXPECT_EQ(manager->GetGatt(), nullptr);
    EXPECT_EQ(manager->GetE6(), nullptr);
    // Timer and helper threads of the test's own sensor and simulator stay.
    EXPECT_LE(ThreadCount(), threadsBefore + 4) << ThreadNames();
    ui.Clear();
    manager->Start();
    ASSERT_TRUE(WaitReady());
    sensor->TriggerSwing(DriverSwing());
    EXPECT_TRUE(emulator->WaitForShots(1, 10s));
}

}  // namespace
}  // namespace orv::test
