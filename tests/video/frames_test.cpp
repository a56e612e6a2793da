// The live picture and the replay reach their windows as painted frames: on
// the off-screen platform (no window system at all, like a Wayland session
// has no X window ids) and on an X server alike.
#include <gtest/gtest.h>

#include <QGuiApplication>
#include <QWidget>

#include "tests/video/video_test_support.h"
#include "video/player_wnd.h"
#include "video/preview_wnd.h"

namespace {

using namespace std::chrono_literals;
using orv::test::ProcessEventsUntil;

const bool kPlatform = (qputenv("QT_QPA_PLATFORM", ORV_QT_PLATFORM), true);

bool ShowsAPicture(QWidget* window) {
    return !orv::test::AllBlack(window->grab().toImage());
}

TEST(FramesTest, PreviewAndReplayPaintTheirWindows) {
    orv::test::UseGui();
    ASSERT_EQ(QGuiApplication::platformName(), ORV_QT_PLATFORM);
    PreviewWnd preview(orv::test::TestSources());
    ASSERT_TRUE(preview.Create(nullptr));
    ASSERT_TRUE(preview.StartPreview(kShowWindow));
    EXPECT_TRUE(ProcessEventsUntil([&] { return ShowsAPicture(preview.Window()); }));

    orv::test::TempDir dir;
    const std::string clip = (dir.path() / "swing.mp4").string();
    ASSERT_TRUE(orv::test::MakeClip(clip, 1.0));
    PlayerWnd* player = PlayerWnd::GetInstance();
    ASSERT_TRUE(player->SetWindowInstance(nullptr));
    ASSERT_TRUE(player->Create());
    ASSERT_TRUE(player->OpenURL(clip));
    EXPECT_TRUE(ProcessEventsUntil([&] { return ShowsAPicture(player->Window()); }));
    // The end of the clip hides the window and lets go of the last picture.
    ASSERT_TRUE(ProcessEventsUntil([&] { return !player->Window()->isVisible(); }, 10s));
    EXPECT_FALSE(ShowsAPicture(player->Window()));
    PlayerWnd::ReleaseInstance();
}

}  // namespace
