// The capture manager and the recording workflow around swings, with a live
// test pattern for a camera, drawing into real windows on a private X server
// and recording real files: the ring of ten files, immediate and delayed
// stops, the setting that turns recording off, and the slow-motion replay,
// shown and closed from session threads.
#include "video/capture_manager.h"

#include <gtest/gtest.h>

#include <QApplication>

#include <atomic>
#include <csignal>
#include <filesystem>
#include <thread>

#include "tests/support/file_text.h"
#include "tests/video/video_test_support.h"
#include "video/player_wnd.h"
#include "video/preview_wnd.h"
#include "video/swing_recorder.h"

namespace {

using namespace std::chrono_literals;
using orv::test::CountOf;
using orv::test::ProcessEventsUntil;
using orv::test::PumpFor;
using Clock = std::chrono::steady_clock;

struct CaptureTest : orv::test::GuiTest {
    orv::test::LogCapture out;  // before anything that logs

    std::string Clip(const std::string& name) const { return (dir.path() / name).string(); }

    orv::test::TempDir dir;
};

struct SwingRecorderTest : CaptureTest {
    SwingRecorderTest() : preview(orv::test::TestSources()) {
        EXPECT_TRUE(preview.Create(nullptr));
        EXPECT_TRUE(preview.StartPreview(kHideWindow));
        capture = preview.GetCaptureManager();
        PlayerWnd::GetInstance()->SetWindowInstance(nullptr);
        recorder = std::make_unique<Orvane::SwingRecorder>(dir.path(), capture,
                                                           [this] { return enabled.load(); });
    }
    ~SwingRecorderTest() override {
        recorder.reset();
        PlayerWnd::ReleaseInstance();
    }

    std::string Ring(int number) const {
        return Clip("MyRecord" + std::to_string(number) + ".mp4");
    }

    PreviewWnd preview;
    CaptureManager* capture = nullptr;
    std::atomic<bool> enabled{true};
    std::unique_ptr<Orvane::SwingRecorder> recorder;
};

TEST_F(CaptureTest, PreviewDrawsTheCameraIntoItsWindow) {
    PreviewWnd preview(orv::test::TestSources());
    ASSERT_TRUE(preview.Create(nullptr));
    ASSERT_TRUE(preview.StartPreview(kShowWindow));
    CaptureManager* capture = preview.GetCaptureManager();
    ASSERT_TRUE(ProcessEventsUntil([&] { return capture->PreviewFrames() > 5; }));
    const QImage shot = orv::test::GrabScreen(preview.Window());
    EXPECT_EQ(shot.size(), QSize(320, 240));
    // The test pattern's bars, left white-grey to right blue, unstretched.
    const QColor left = shot.pixelColor(20, 60);
    const QColor right = shot.pixelColor(300, 60);
    EXPECT_GT(left.red(), 150);
    EXPECT_GT(left.blue(), 150);
    EXPECT_LT(right.red(), 60);
    EXPECT_GT(right.blue(), 150);
    // 640x480 scaled to 320 wide keeps the aspect ratio.
    EXPECT_EQ(preview.Window()->geometry(), QRect(1280 - 320 - 10, 1024 / 2 + 10, 320, 240));
    EXPECT_EQ(capture->StartPreview(), S_OK);  // a second start does nothing
    for (const char* line :
         {"Engine Initialized\n", "Preview Started\n", "GetPreferedFrameSize: 320, 240\n"}) {
        EXPECT_EQ(CountOf(out.Text(), line), 1u) << line << out.Text();
    }
}

TEST_F(CaptureTest, ClipOfAKilledProgramPlaysUpToItsLastSecond) {
    const std::string path = Clip("killed.mp4");
    const std::string said = Clip("said.txt");
    orv::test::ChildProcess child({RECORD_CHILD_PATH, path}, {}, said);
    ASSERT_TRUE(child.Started());
    EXPECT_TRUE(
        orv::test::Eventually([&] { return orv::test::ReadFileText(said) == "recording\n"; }, 10s));
    // Three complete one-second fragments on disk, then the program dies.
    EXPECT_TRUE(orv::test::Eventually(
        [&] { return CountOf(orv::test::ReadFileText(path), "moof") >= 3; }, 10s));
    child.End(SIGKILL);
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

TEST_F(SwingRecorderTest, ElevenSwingsRotateTheRingAndOverwriteTheFirstFile) {
    std::filesystem::file_time_type firstWritten;
    for (int swing = 0; swing < 11; ++swing) {
        const Clock::time_point start = Clock::now();
        ASSERT_TRUE(recorder->StartRecording());
        EXPECT_EQ(recorder->LastRecordingFile(), Ring(swing % 10));
        PumpFor(300ms);
        recorder->StopRecording(0);
        const double wall = std::chrono::duration<double>(Clock::now() - start).count();
        EXPECT_FALSE(capture->IsRecording());
        const orv::test::DecodeResult clip = orv::test::DecodeVideo(Ring(swing % 10));
        ASSERT_TRUE(clip.ok) << swing;
        EXPECT_EQ(QSize(clip.width, clip.height), QSize(320, 240));
        EXPECT_NEAR(clip.seconds, wall, 0.25) << swing;
        if (swing == 0) {
            firstWritten = std::filesystem::last_write_time(Ring(0));
        }
    }
    for (int number = 0; number < 10; ++number) {
        EXPECT_TRUE(std::filesystem::exists(Ring(number)));
    }
    EXPECT_FALSE(std::filesystem::exists(Ring(10)));
    EXPECT_GT(std::filesystem::last_write_time(Ring(0)), firstWritten);
    EXPECT_EQ(CountOf(orv::test::ReadFileText(Ring(0)), "soun"), 0u);  // no sound track
    const std::string log = out.Text();
    for (const char* line : {"StartRecording success\n", "StopRecording\n", "Recording Started\n",
                             "Recording Stopped\n"}) {
        EXPECT_EQ(CountOf(log, line), 11u) << line << log;
    }
    EXPECT_EQ(CountOf(log, "GetPreferredRecordingSize: 320, 240\n"), 1u);
}

TEST_F(SwingRecorderTest, DelayedStopLetsTheClipRunTwoMoreSeconds) {
    ASSERT_TRUE(recorder->StartRecording());
    recorder->StopRecording(2);
    EXPECT_TRUE(capture->IsRecording());  // the caller does not wait
    ASSERT_TRUE(ProcessEventsUntil([&] { return !capture->IsRecording(); }, 6s));
    const orv::test::DecodeResult clip = orv::test::DecodeVideo(Ring(0));
    ASSERT_TRUE(clip.ok);
    EXPECT_NEAR(clip.seconds, 2.0, 0.35);
    EXPECT_NEAR(clip.frames, clip.seconds * 30, 6);  // the camera's rate
    EXPECT_EQ(CountOf(out.Text(), "StopRecording delay\n"), 1u);
}

TEST_F(SwingRecorderTest, WithRecordingOffNothingIsWrittenOrShown) {
    enabled = false;
    EXPECT_FALSE(recorder->IsRecordingAvailable());
    EXPECT_FALSE(recorder->StartRecording());
    recorder->StopRecording(0);
    recorder->ShowRecordingFile();
    EXPECT_TRUE(std::filesystem::is_empty(dir.path()));
    EXPECT_FALSE(PlayerWnd::GetInstance()->HasPlayer());
    // The preview runs on: recordings need it when the setting comes back.
    const uint64_t frames = capture->PreviewFrames();
    EXPECT_TRUE(ProcessEventsUntil([&] { return capture->PreviewFrames() > frames + 5; }));

    Orvane::SwingRecorder noCamera(dir.path(), nullptr, [] { return true; });
    EXPECT_FALSE(noCamera.IsRecordingAvailable());
    EXPECT_FALSE(noCamera.StartRecording());
}

TEST_F(SwingRecorderTest, ShowsTheLastClipFromASessionThread) {
    ASSERT_TRUE(recorder->StartRecording());
    PumpFor(1000ms);
    recorder->StopRecording(0);
    std::atomic<bool> shown{false};
    std::thread session([&] {
        recorder->ShowRecordingFile();
        shown = true;
    });
    ASSERT_TRUE(ProcessEventsUntil([&] { return shown.load(); }));
    session.join();
    QWidget* window = PlayerWnd::GetInstance()->Window();
    EXPECT_TRUE(window->isVisible());
    EXPECT_TRUE(window->windowFlags() & Qt::WindowStaysOnTopHint);
    // The slow rate is set once the first frames play, after the first start.
    const char* rate = "Rate Control nearest rate(0.600000): 0.600000\n";
    ASSERT_TRUE(ProcessEventsUntil([&] {
        const std::string log = out.Text();
        return CountOf(log, "PlayerState::Started\n") > 0 && CountOf(log, rate) > 0;
    }));
    EXPECT_EQ(CountOf(out.Text(), rate), 1u);
    // Decoded by openh264: no GPL-licensed decoder came into the process.
    const std::string maps = orv::test::ReadFileText("/proc/self/maps");
    EXPECT_EQ(maps.find("libavcodec"), std::string::npos);
    EXPECT_EQ(maps.find("libfaad"), std::string::npos);

    recorder->ShowRecordingFile();  // still showing: refused
    EXPECT_EQ(CountOf(out.Text(), "playerWnd->Create() false\n"), 1u);

    // A new swing closes the replay before it records.
    std::thread swing([&] { recorder->ClosePlayer(); });
    ASSERT_TRUE(ProcessEventsUntil([&] { return !window->isVisible(); }));
    swing.join();
    EXPECT_FALSE(PlayerWnd::GetInstance()->HasPlayer());
    EXPECT_EQ(CountOf(out.Text(), "Show Recording File...\n"), 2u);
}

}  // namespace
