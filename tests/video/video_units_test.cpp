// The arithmetic of the video subsystem: frame sizes, bit rates, window places.
#include <gtest/gtest.h>

#include "video/frame_size.h"
#include "video/window_placement.h"

namespace {

TEST(FrameSizeTest, Width320KeepsTheCamerasAspectAndBitRateFollowsTheCamera) {
    EXPECT_EQ(ComputePreferredFrameSize(1920, 1080).height, 180);
    EXPECT_EQ(ComputePreferredFrameSize(352, 288).height, 260);  // 261.8 truncated, made even
    EXPECT_EQ(ComputePreferredFrameSize(320, 240).width, 320);
    EXPECT_EQ(ComputePreferredFrameSize(0, 0).width, 0);
    // The bit rate comes from the camera's own size and rate.
    EXPECT_EQ(GetEncodingBitrate({640, 480, 30, 1}), 3'072'000u);
    EXPECT_EQ(GetEncodingBitrate({1280, 720, 15, 1}), 4'608'000u);
    EXPECT_EQ(GetEncodingBitrate({640, 480, 30000, 1001}), 3'068'931u);
    EXPECT_EQ(GetEncodingBitrate({640, 480, 30, 0}), 0u);
}

TEST(WindowPlacementTest, PreviewRightOfTheWorkAreasMiddleAndPlayerInAFixedPlace) {
    EXPECT_EQ(PreviewPlacement({0, 0, 1920, 1050}, {320, 180}), QRect(1590, 535, 320, 180));
    EXPECT_EQ(PreviewPlacement({0, 0, 1366, 767}, {320, 240}), QRect(1036, 393, 320, 240));
    // A panel on the left and one on top move the work area's origin.
    EXPECT_EQ(PreviewPlacement({64, 32, 1216, 992}, {320, 240}), QRect(950, 538, 320, 240));
    // The player sits in a fixed place of a centred area.
    EXPECT_EQ(PlayerPlacement({1920, 1080}), QRect(471, 359, 798, 398));
    // Narrower than the area: applied as it is, left of x = 25.
    EXPECT_EQ(PlayerPlacement({800, 600}), QRect(-89, 119, 798, 398));
    // Halves truncated toward zero: -0.5 becomes 0.
    EXPECT_EQ(PlayerPlacement({1027, 729}), QRect(25, 184, 798, 398));
}

}  // namespace
