// Picture sizes and the recording bit rate derived from the camera's mode.
#pragma once

#include <cstdint>

struct FrameSize {
    int width = 0;
    int height = 0;
};

// The camera's own format: what the device delivers before any scaling.
struct CameraMode {
    int width = 0;
    int height = 0;
    int fpsNum = 0;
    int fpsDen = 1;
};

// 320 wide, the camera's aspect ratio, even height (so I420 has whole chroma rows).
FrameSize ComputePreferredFrameSize(int cameraWidth, int cameraHeight);

// The process-wide preferred size: the first camera size seen fixes it for the
// life of the process, for previews and recordings alike. Logged when first set.
FrameSize GetPreferredFrameSize(int cameraWidth, int cameraHeight);

// The cached size, 0 by 0 until the first call above.
FrameSize CachedPreferredFrameSize();

// Bits per second for the H.264 stream, computed from the camera's own size
// and rate although frames are encoded at the preferred size: 3,072,000 for
// 640x480 at 30/1.
uint32_t GetEncodingBitrate(const CameraMode& mode);
