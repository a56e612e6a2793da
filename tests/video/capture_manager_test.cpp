// The capture manager with a live test pattern for a camera, drawing into a
// real window on a private X server and recording real files.
#include "video/capture_manager.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QProcess>

#include "common/debug_log.h"
#include "tests/support/file_text.h"
#include "tests/video/video_test_support.h"
#include "video/preview_wnd.h"

namespace {

using namespace std::chrono_literals;
using orv::test::CountOf;
using orv::test::ProcessEventsUntil;
using orv::test::PumpFor;

struct CaptureTest : orv::test::GuiTest {
    CaptureTest() { ShowLog(true, false); }
    ~CaptureTest() override { ShowLog(false, false); }

    // A shown preview of the test pattern.
    std::unique_ptr<PreviewWnd> StartPreview(CaptureSources sources = orv::test::TestSources(),
                                             CaptureTiming timing = {}) {
        auto preview = std::make_unique<PreviewWnd>(std::move(sources), timing);
        EXPECT_TRUE(preview->Create(nullptr));
        EXPECT_TRUE(preview->StartPreview(kShowWindow));
        EXPECT_TRUE(
            ProcessEventsUntil([&] { return preview->GetCaptureManager()->IsPreviewActive(); }));
        return preview;
    }

    std::string Clip(const std::string& name) const { return (dir.path() / name).string(); }

    orv::test::TempDir dir;
};

TEST_F(CaptureTest, PreviewDrawsTheCameraIntoItsWindowAndRecordsAPlayableClip) {
    orv::test::StdoutCapture out;
    auto preview = StartPreview();
    CaptureManager* capture = preview->GetCaptureManager();
    ASSERT_TRUE(ProcessEventsUntil([&] { return capture->PreviewFrames() > 5; }));
    const QImage shot = orv::test::GrabScreen(preview->Window());
    EXPECT_EQ(shot.size(), QSize(320, 240));
    // The test pattern's bars, left white-grey to right blue, unstretched.
    const QColor left = shot.pixelColor(20, 60);
    const QColor right = shot.pixelColor(300, 60);
    EXPECT_GT(left.red(), 150);
    EXPECT_GT(left.blue(), 150);
    EXPECT_LT(right.red(), 60);
    EXPECT_GT(right.blue(), 150);
    // 640x480 scaled to 320 wide keeps the aspect ratio.
    EXPECT_EQ(preview->Window()->geometry(), QRect(1280 - 320 - 10, 1024 / 2 + 10, 320, 240));
    EXPECT_EQ(capture->StartPreview(), S_OK);  // a second start does nothing

    const auto start = std::chrono::steady_clock::now();
    ASSERT_EQ(capture->StartRecord(Clip("clip.mp4")), S_OK);
    EXPECT_TRUE(capture->IsRecording());
    PumpFor(1500ms);
    EXPECT_EQ(capture->StopRecord(), S_OK);
    const double wall =
        std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    EXPECT_FALSE(capture->IsRecording());
    const orv::test::DecodeResult clip = orv::test::DecodeVideo(Clip("clip.mp4"));
    ASSERT_TRUE(clip.ok);
    EXPECT_EQ(QSize(clip.width, clip.height), QSize(320, 240));
    EXPECT_NEAR(clip.seconds, wall, 0.3);
    EXPECT_NEAR(clip.frames, wall * 30, 10);
    EXPECT_EQ(CountOf(orv::test::ReadFileText(Clip("clip.mp4")), "soun"), 0u);  // no sound track
    const std::string log = out.Text();
    for (const char* line :
         {"Engine Initialized\n", "Preview Started\n", "GetPreferedFrameSize: 320, 240\n",
          "GetPreferredRecordingSize: 320, 240\n", "Recording Started\n", "Recording Stopped\n"}) {
        EXPECT_EQ(CountOf(log, line), 1u) << line << log;
    }
}

TEST_F(CaptureTest, ClipOfAKilledProgramPlaysUpToItsLastSecond) {
    const std::string path = Clip("killed.mp4");
    QProcess child;
    child.start(RECORD_CHILD_PATH, {QString::fromStdString(path)});
    ASSERT_TRUE(child.waitForReadyRead(10000));
    EXPECT_EQ(child.readAllStandardOutput(), "recording\n");
    // Three complete one-second fragments on disk, then the program dies.
    EXPECT_TRUE(orv::test::Eventually(
        [&] { return CountOf(orv::test::ReadFileText(path), "moof") >= 3; }, 10s));
    child.kill();
    ASSERT_TRUE(child.waitForFinished(5000));
    const orv::test::DecodeResult decoded = orv::test::DecodeVideo(path);
    EXPECT_TRUE(decoded.ok);
    EXPECT_GE(decoded.lastSeconds, 1.9);
    EXPECT_GE(decoded.frames, 55);
}

TEST_F(CaptureTest, ReleasingLeavesNoThreadBehind) {
    auto preview = std::make_unique<PreviewWnd>(orv::test::TestSources());
    // Start-up of GStreamer's own machinery is not ours to count.
    const int before = orv::test::ThreadCount();
    ASSERT_TRUE(preview->Create(nullptr));
    ASSERT_TRUE(preview->StartPreview(kHideWindow));
    CaptureManager* capture = preview->GetCaptureManager();
    ASSERT_EQ(capture->StartRecord(Clip("threads.mp4")), S_OK);
    PumpFor(300ms);
    EXPECT_GT(orv::test::ThreadCount(), before);
    preview.reset();  // the recording is finalised on the way
    EXPECT_TRUE(orv::test::Eventually(
        [&] {
            g_thread_pool_stop_unused_threads();  // GLib's idle workers are not ours
            return orv::test::ThreadCount() <= before;
        },
        5s))
        << orv::test::ThreadNames() << " now, " << before << " before";
    EXPECT_TRUE(orv::test::DecodeVideo(Clip("threads.mp4")).ok);
}

}  // namespace
