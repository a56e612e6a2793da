// The recording workflow around swings: the ring of ten files, immediate and
// delayed stops, the setting that turns recording off, and the slow-motion
// replay, shown and closed from session threads.
#include "video/swing_recorder.h"

#include <gtest/gtest.h>

#include <QApplication>

#include <atomic>
#include <filesystem>
#include <thread>

#include "common/debug_log.h"
#include "tests/support/file_text.h"
#include "tests/support/test_support.h"
#include "tests/video/video_test_support.h"
#include "video/player_wnd.h"
#include "video/preview_wnd.h"

namespace {

using namespace std::chrono_literals;
using orv::test::CountOf;
using orv::test::ProcessEventsUntil;
using orv::test::PumpFor;
using Clock = std::chrono::steady_clock;

double SecondsSince(Clock::time_point start) {
    return std::chrono::duration<double>(Clock::now() - start).count();
}

struct SwingRecorderTest : orv::test::GuiTest {
    SwingRecorderTest() : preview(orv::test::TestSources()) {
        ShowLog(true, false);
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
        ShowLog(false, false);
    }

    std::string Ring(int number) const {
        return (dir.path() / ("MyRecord" + std::to_string(number) + ".mp4")).string();
    }

    orv::test::TempDir dir;
    PreviewWnd preview;
    CaptureManager* capture = nullptr;
    std::atomic<bool> enabled{true};
    std::unique_ptr<Orvane::SwingRecorder> recorder;
};

TEST_F(SwingRecorderTest, ElevenSwingsRotateTheRingAndOverwriteTheFirstFile) {
    orv::test::StdoutCapture out;
    std::filesystem::file_time_type firstWritten;
    for (int swing = 0; swing < 11; ++swing) {
        const Clock::time_point start = Clock::now();
        ASSERT_TRUE(recorder->StartRecording());
        EXPECT_EQ(recorder->LastRecordingFile(), Ring(swing % 10));
        PumpFor(300ms);
        recorder->StopRecording(0);
        const double wall = SecondsSince(start);
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
    EXPECT_TRUE(recorder->RecordingRequested());
    const std::string log = out.Text();
    EXPECT_EQ(CountOf(log, "StartRecording success\n"), 11u);
    EXPECT_EQ(CountOf(log, "StopRecording\n"), 11u);
}

TEST_F(SwingRecorderTest, DelayedStopLetsTheClipRunTwoMoreSeconds) {
    orv::test::StdoutCapture out;
    const Clock::time_point start = Clock::now();
    ASSERT_TRUE(recorder->StartRecording());
    recorder->StopRecording(2);
    EXPECT_LT(SecondsSince(start), 1.0);  // the caller does not wait
    EXPECT_TRUE(capture->IsRecording());
    ASSERT_TRUE(ProcessEventsUntil([&] { return !capture->IsRecording(); }, 6s));
    EXPECT_NEAR(SecondsSince(start), 2.0, 0.5);
    const orv::test::DecodeResult clip = orv::test::DecodeVideo(Ring(0));
    ASSERT_TRUE(clip.ok);
    EXPECT_NEAR(clip.seconds, 2.0, 0.35);
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
    orv::test::StdoutCapture out;
    std::atomic<bool> shown{false};
    std::thread session([&] {
        recorder->ShowRecordingFile();
        shown = true;
    });
    ASSERT_TRUE(ProcessEventsUntil([&] { return shown.load(); }));
    session.join();
    EXPECT_FALSE(recorder->RecordingRequested());
    QWidget* window = PlayerWnd::GetInstance()->Window();
    EXPECT_TRUE(window->isVisible());
    EXPECT_EQ(window->geometry(), QRect(151, 331, 798, 398));
    EXPECT_TRUE(window->windowFlags() & Qt::WindowStaysOnTopHint);
    ASSERT_TRUE(
        ProcessEventsUntil([&] { return CountOf(out.Text(), "PlayerState::Started\n") > 0; }));
    EXPECT_TRUE(ProcessEventsUntil(
        [&] { return !orv::test::AllBlack(orv::test::GrabScreen(window)); }, 3s));
    EXPECT_EQ(CountOf(out.Text(), "Rate Control nearest rate(0.600000): 0.600000\n"), 1u);
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
