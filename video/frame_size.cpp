#include "video/frame_size.h"

#include <mutex>

#include "common/debug_log.h"

namespace {

constexpr int kPreferredWidth = 320;

// Guards the cached preferred size below.
std::mutex gPreferredMutex;
int g_nPreferredWidth = 0;
int g_nPreferredHeight = 0;

}  // namespace

FrameSize ComputePreferredFrameSize(int cameraWidth, int cameraHeight) {
    if (cameraWidth <= 0 || cameraHeight <= 0) {
        return {};
    }
    // Single precision and truncation, as the size was always computed.
    const float scale = static_cast<float>(kPreferredWidth) / static_cast<float>(cameraWidth);
    const int height = static_cast<int>(static_cast<float>(cameraHeight) * scale);
    return {kPreferredWidth, height & ~1};
}

FrameSize GetPreferredFrameSize(int cameraWidth, int cameraHeight) {
    std::lock_guard lock(gPreferredMutex);
    if (g_nPreferredWidth != 0 && g_nPreferredHeight != 0) {
        return {g_nPreferredWidth, g_nPreferredHeight};
    }
    const FrameSize size = ComputePreferredFrameSize(cameraWidth, cameraHeight);
    g_nPreferredWidth = size.width;
    g_nPreferredHeight = size.height;
    LOG_INFO("GetPreferedFrameSize: %d, %d\n", size.width, size.height);
    return size;
}

FrameSize CachedPreferredFrameSize() {
    std::lock_guard lock(gPreferredMutex);
    return {g_nPreferredWidth, g_nPreferredHeight};
}

uint32_t GetEncodingBitrate(const CameraMode& mode) {
    const float width = static_cast<float>(static_cast<uint32_t>(mode.width));
    const float height = static_cast<float>(static_cast<uint32_t>(mode.height));
    const float num = static_cast<float>(static_cast<uint32_t>(mode.fpsNum));
    const float den = static_cast<float>(static_cast<uint32_t>(mode.fpsDen));
    if (den == 0.0f) {
        return 0;
    }
    return static_cast<uint32_t>(num * (width / 3.0f * height) / den);
}
