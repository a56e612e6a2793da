// The picture source of a capture manager, chosen by the code that builds it:
// a camera found by the device monitor, or GStreamer's live test pattern
// standing in for a camera (tests, demonstrations), or none.
#pragma once

#include <gst/gst.h>

#include <memory>
#include <string>

#include "video/frame_size.h"

class CameraSource {
public:
    // No camera: initialisation succeeds, the preview cannot start.
    CameraSource() = default;

    // videotestsrc, live, in the given mode.
    static CameraSource TestPattern(int width, int height, int fpsNum, int fpsDen = 1);
    // A device from EnumCameraDevice; its mode is picked from the device's caps.
    static CameraSource Device(GstDevice* device);

    bool IsValid() const { return mode_.width > 0 && mode_.height > 0; }
    const CameraMode& Mode() const { return mode_; }
    const std::string& Name() const { return name_; }

    // A bin with one src pad giving raw video in Mode(); null (logged) on failure.
    GstElement* CreateElement() const;

private:
    std::shared_ptr<GstDevice> device_;  // null for the test pattern
    CameraMode mode_;
    std::string name_;
    std::string format_;       // the device's raw format, empty for any
    bool compressed_ = false;  // the device delivers JPEG frames
};
