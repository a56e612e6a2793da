// Pictures handed to a window instead of drawn into a native window id, so
// the video shows on X11 and Wayland sessions alike (and off screen).
#pragma once

#include <gst/gst.h>

#include <QImage>

#include <atomic>
#include <cstdint>

// Where frames go: implemented by the video window. PresentFrame is called on
// streaming threads and must only keep the newest frame and ask for a repaint.
class FrameTarget {
public:
    virtual ~FrameTarget() = default;
    virtual void PresentFrame(QImage frame) = 0;
};

// An appsink that converts every frame it gets to a QImage of its own (the
// pipeline's buffer goes back at once) and hands it to `target`. `sync`:
// frames are shown at their time (playback) or as they come (live preview).
// `shown`, when given, counts the frames handed over.
GstElement* MakeFrameSink(const char* name, FrameTarget* target, bool sync,
                          std::atomic<uint64_t>* shown = nullptr);
