// Helpers for the video tests: the shared GUI test application, test
// sources, and looking into recorded files.
#pragma once

#include <gtest/gtest.h>

#include <QImage>

#include <chrono>
#include <functional>
#include <string>

#include "tests/support/test_support.h"
#include "tests/ui/gui_test_app.h"
#include "video/capture_manager.h"

namespace orv::test {

// The shared display and application, with GStreamer ready.
void UseGui();
struct GuiTest : ::testing::Test {
    GuiTest() { UseGui(); }
};

// Handles GUI events for `duration` (a clip's length is time by nature).
void PumpFor(std::chrono::milliseconds duration);

// A live 640x480 test pattern at 30/1, no microphone.
CaptureSources TestSources();

struct DecodeResult {
    bool ok = false;  // reached its end without an error
    int frames = 0;
    int width = 0;
    int height = 0;
    double seconds = 0.0;      // the length the file gives
    double lastSeconds = 0.0;  // time stamp of the last picture
};
// Demuxes and decodes the whole video track.
DecodeResult DecodeVideo(const std::string& path);

// Encodes `seconds` of the test pattern at 320x240, 30/1, into an MP4 file
// (faster than real time: for tests of playback).
bool MakeClip(const std::string& path, double seconds);

// True when every pixel is black.
bool AllBlack(const QImage& image);
// A screenshot of a window as the X server shows it.
QImage GrabScreen(const QWidget* window);

}  // namespace orv::test
