// A swing recorded and replayed end to end: the in-process sensor, the
// stand-in simulator, and the video side with the live test picture.
#include <QWidget>

#include "app/record_preview.h"
#include "tests/session/session_fixture.h"
#include "tests/ui/gui_test_app.h"
#include "video/player_wnd.h"
#include "video/preview_wnd.h"

namespace orv::test {
namespace {

using namespace std::chrono_literals;

class SwingVideoTest : public SessionTest {
protected:
    void SetUp() override {
        GuiTestApp();
        SessionTest::SetUp();
    }
    void TearDown() override {
        SessionTest::TearDown();  // the session lets go of the recorder first
        video.reset();
    }
    TempDir folder;
    std::unique_ptr<RecordPreview> video;
};

TEST_F(SwingVideoTest, ASwingGivesOneClipThatIsReplayedAfterTheDisarm) {
    video = RecordPreview::Create(nullptr, true, folder.path(), [] { return true; });
    ASSERT_NE(video, nullptr);
    ASSERT_TRUE(video->StartPreview(kShowWindow));

    manager = std::make_unique<Orvane::OrvManager>();
    config.simulatorPort = port;
    manager->SetConfig(config);
    manager->SetCallback(&ui);
    manager->SetRecordingControl(video->Recorder());
    manager->Start();
    ASSERT_TRUE(ProcessEventsUntil([&] { return WaitReady(); }, 15s));

    sensor->TriggerSwing(DriverSwing());
    const auto clip = folder.path() / "MyRecord0.mp4";
    // The shot goes out; the simulator disarms; the clip is finalised and replayed.
    ASSERT_TRUE(ProcessEventsUntil(
        [&] {
            return emulator->Shots().size() == 1 && PlayerWnd::GetInstance()->HasPlayer() &&
                   PlayerWnd::GetInstance()->Window()->isVisible();
        },
        20s));
    ASSERT_TRUE(std::filesystem::exists(clip));
    EXPECT_GT(std::filesystem::file_size(clip), 1000u);
    EXPECT_FALSE(std::filesystem::exists(folder.path() / "MyRecord1.mp4"));
    // The replay ends by itself and the window hides.
    EXPECT_TRUE(
        ProcessEventsUntil([&] { return !PlayerWnd::GetInstance()->Window()->isVisible(); }, 30s));
}

}  // namespace
}  // namespace orv::test
