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
    TempDir dir;
    history::HistoryWriter writer(dir.path() / "history.db");
    writer.Start();
    emulator->SetClub("NoSuchClub");
    StartManager();
    manager->SetShotListener(&writer);
    ASSERT_TRUE(Eventually([&] {
        E6TruSimClient* client = manager->GetE6();
        return ui.Saw("ble:3") && ui.Saw("e6:1") && client != nullptr &&
               client->IsAuthenticated() && emulator->IsClientAuthenticated();
    }));
    emulator->ClearReceived();
    sensor->TriggerSwing(DriverSwing(150.0));
    ASSERT_TRUE(Eventually([&] { return ui.Saw("shot"); }));
    {
        StdoutCapture out;
        ConsoleReporter(*manager).OnOrvShot();
        EXPECT_EQ(out.Text(), "Shot not sent: the simulator named no known club\n");
    }
    // A club the program knows: the next shot goes out.
    emulator->SetClub("Driver");
    ASSERT_TRUE(emulator->SendPlayerData());
    ASSERT_TRUE(Eventually([&] { return manager->GetE6()->GetCurrentClub() != 0; }));
    sensor->TriggerSwing(DriverSwing(150.0));
    ASSERT_TRUE(emulator->WaitForShots(1, 10s));
    manager->Stop();
    writer.Stop();

    const auto rows = history::HistoryStore::Open(writer.File())->Shots({});
    ASSERT_EQ(rows.size(), 2u);
    for (const history::HistoryRow& row : rows) {
        EXPECT_EQ(row.session, writer.Session());
        EXPECT_NEAR(row.shot.headSpeed, 94.5, 1e-4);
        EXPECT_NEAR(row.shot.path, -2.3, 1e-4);  // the sign survives
        EXPECT_NEAR(row.shot.tempo, 3.1, 1e-4);
    }
    EXPECT_EQ(rows[0].shot.outcome, ShotOutcome::kRefusedNotFinite);
    const Orvane::ShotReport& sent = rows[1].shot;
    EXPECT_EQ(sent.outcome, ShotOutcome::kSent);
    EXPECT_EQ(sent.clubName, "Driver");
    EXPECT_EQ(sent.clip, "/clips/MyRecord3.mp4");
    EXPECT_GT(sent.distanceToPin, 0.0);
    // One of each: the refused shot sent nothing.
    EXPECT_EQ(ReceivedOfType("SetBallData"),
              std::vector<std::string>{E6_GetBallDataJson(sent.ball)});
    EXPECT_EQ(ReceivedOfType("SetClubData"),
              std::vector<std::string>{E6_GetClubDataJson(sent.clubData)});
    EXPECT_EQ(ReceivedOfType("SendShot").size(), 1u);
}

}  // namespace
}  // namespace orv::test
