// Shots through the whole session into the history file: each row holds the
// very numbers the simulator got, and a shot refused for values that are not
// numbers is kept as refused, shown on the console and never sent.
#include <gtest/gtest.h>

#include "app/console_reporter.h"
#include "history/history_store.h"
#include "history/history_writer.h"
#include "simulator/trusim_messages.h"
#include "tests/session/session_fixture.h"

namespace orv::test {
namespace {

using namespace std::chrono_literals;
using Orvane::ShotOutcome;

class HistorySession : public SessionTest {};

TEST_F(HistorySession, RowsHoldTheSentNumbersAndRefusalsAreKept) {
    struct Case {
        const char* club;  // as the simulator names it
        ShotOutcome outcome;
    };
    for (const Case& c :
         {Case{"Driver", ShotOutcome::kSent}, Case{"NoSuchClub", ShotOutcome::kRefusedNotFinite}}) {
        SCOPED_TRACE(c.club);
        TearDown();
        SetUp();
        ui.Clear();
        TempDir dir;
        history::HistoryWriter writer(dir.path() / "history.db");
        writer.Start();
        emulator->SetClub(c.club);
        StartManager();
        manager->SetShotListener(&writer);
        ASSERT_TRUE(Eventually([&] {
            E6TruSimClient* client = manager->GetE6();
            return ui.Saw("ble:3") && client != nullptr && client->IsAuthenticated() &&
                   emulator->IsClientAuthenticated();
        }));
        ASSERT_TRUE(Eventually([&] { return ui.Saw("e6:1"); }));
        emulator->ClearReceived();
        sensor->TriggerSwing(DriverSwing(150.0));
        ASSERT_TRUE(Eventually([&] { return ui.Saw("shot"); }));
        if (c.outcome == ShotOutcome::kSent) {
            ASSERT_TRUE(emulator->WaitForShots(1, 10s));
        }
        manager->Stop();
        writer.Stop();

        const auto rows = history::HistoryStore::Open(writer.File())->Shots({});
        ASSERT_EQ(rows.size(), 1u);
        const Orvane::ShotReport& shot = rows[0].shot;
        EXPECT_EQ(shot.outcome, c.outcome);
        EXPECT_EQ(rows[0].session, writer.Session());
        EXPECT_NEAR(shot.headSpeed, 94.5, 1e-4);
        EXPECT_NEAR(shot.path, -2.3, 1e-4);  // the sign survives
        EXPECT_NEAR(shot.tempo, 3.1, 1e-4);
        if (c.outcome == ShotOutcome::kSent) {
            EXPECT_EQ(shot.clubName, "Driver");
            EXPECT_EQ(shot.clip, "/clips/MyRecord3.mp4");
            EXPECT_GT(shot.distanceToPin, 0.0);
            EXPECT_EQ(ReceivedOfType("SetBallData"),
                      std::vector<std::string>{E6_GetBallDataJson(shot.ball)});
            EXPECT_EQ(ReceivedOfType("SetClubData"),
                      std::vector<std::string>{E6_GetClubDataJson(shot.clubData)});
        } else {
            EXPECT_TRUE(ReceivedOfType("SetBallData").empty());
            EXPECT_TRUE(ReceivedOfType("SendShot").empty());
            StdoutCapture out;
            ConsoleReporter(*manager).OnOrvShot();
            EXPECT_EQ(out.Text(), "Shot not sent: the simulator named no known club\n");
        }
    }
}

}  // namespace
}  // namespace orv::test
