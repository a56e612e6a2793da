// Replay of a clip in the player window: slow motion, the window's place,
// its end, and calls from worker threads and from the GUI thread itself.
#include <gtest/gtest.h>

#include <QApplication>
#include <QMouseEvent>

#include <atomic>
#include <fstream>
#include <thread>

#include "common/debug_log.h"
#include "tests/support/test_support.h"
#include "tests/video/video_test_support.h"
#include "video/player_wnd.h"
#include "video/ui_thread.h"
#include "video/video_window.h"

namespace {

using namespace std::chrono_literals;
using orv::test::CountOf;
using orv::test::ProcessEventsUntil;
using Clock = std::chrono::steady_clock;

double SecondsSince(Clock::time_point start) {
    return std::chrono::duration<double>(Clock::now() - start).count();
}

struct ReplayTest : orv::test::GuiTest {
    ReplayTest() {
        ShowLog(true, false);
        player = PlayerWnd::GetInstance();
        EXPECT_TRUE(player->SetWindowInstance(nullptr));
    }
    ~ReplayTest() override {
        PlayerWnd::ReleaseInstance();
        ShowLog(false, false);
    }

    std::string Clip(const std::string& name, double seconds) {
        const std::string path = (dir.path() / name).string();
        EXPECT_TRUE(orv::test::MakeClip(path, seconds));
        return path;
    }

    // Runs `work` on a thread of its own while the GUI thread handles events.
    void FromWorker(const std::function<void()>& work) {
        std::atomic<bool> done{false};
        std::thread worker([&] {
            work();
            done = true;
        });
        EXPECT_TRUE(ProcessEventsUntil([&] { return done.load(); }));
        worker.join();
    }

    orv::test::TempDir dir;
    PlayerWnd* player = nullptr;
};

TEST_F(ReplayTest, PlaysInSlowMotionThenHidesItsWindow) {
    const std::string clip = Clip("swing.mp4", 2.0);
    orv::test::StdoutCapture out;
    Clock::time_point opened;
    FromWorker([&] {
        ASSERT_TRUE(player->Create());
        ASSERT_TRUE(player->OpenURL(clip));
        opened = Clock::now();
    });
    QWidget* window = player->Window();
    EXPECT_TRUE(window->isVisible());
    EXPECT_EQ(window->geometry(), QRect(151, 331, 798, 398));
    EXPECT_TRUE(window->windowFlags() & Qt::WindowStaysOnTopHint);
    EXPECT_TRUE(ProcessEventsUntil(
        [&] { return !orv::test::AllBlack(orv::test::GrabScreen(window)); }, 3s));
    ASSERT_TRUE(ProcessEventsUntil([&] { return !window->isVisible(); }, 15s));
    // 2 s at 0.6 of normal speed take 3.33 s.
    const double wall = SecondsSince(opened);
    EXPECT_GT(wall, 2.9);
    EXPECT_LT(wall, 6.0);
    EXPECT_FALSE(player->HasPlayer());
    const std::string log = out.Text();
    EXPECT_EQ(CountOf(log, "Rate Control nearest rate(0.600000): 0.600000\n"), 1u) << log;
    EXPECT_EQ(CountOf(log, "CPlayer::HandleEvent() type: 211\n"), 1u) << log;
    EXPECT_EQ(CountOf(log, "PlayerState::Stopped\n"), 1u) << log;
    EXPECT_GE(CountOf(log, "PlayerState::Started\n"), 1u) << log;
    // Decoded by openh264: no GPL-licensed decoder came into the process.
    EXPECT_FALSE(orv::test::LibraryLoaded("libavcodec"));
    EXPECT_FALSE(orv::test::LibraryLoaded("libfaad"));
}

TEST_F(ReplayTest, ClosingFromAnotherThreadEndsTheReplayAtOnce) {
    const std::string first = Clip("first.mp4", 3.0);
    const std::string second = Clip("second.mp4", 0.5);
    orv::test::StdoutCapture out;
    ASSERT_TRUE(player->Create());
    ASSERT_TRUE(player->OpenURL(first));
    ASSERT_TRUE(ProcessEventsUntil([&] { return player->State() == PlayerState::Started; }));
    FromWorker([&] { player->Close(); });
    EXPECT_FALSE(player->Window()->isVisible());
    EXPECT_FALSE(player->HasPlayer());
    EXPECT_EQ(player->State(), PlayerState::Closed);
    // A new player is not disturbed by what the old one left in the queue.
    ASSERT_TRUE(player->Create());
    ASSERT_TRUE(player->OpenURL(second));
    ASSERT_TRUE(ProcessEventsUntil([&] { return !player->Window()->isVisible(); }, 10s));
    EXPECT_EQ(CountOf(out.Text(), "PlayerState::Stopped\n"), 1u);
}

}  // namespace
