#include "simulator/trusim_messages.h"

#include <gtest/gtest.h>

#include <string>

#include "common/debug_log.h"
#include "tests/support/test_support.h"

namespace {

// The challenge answer is pinned where the link authenticates.
TEST(TruSimMessages, PingAndShotRecordsWithThreeDecimalsAndTheTab) {
    EXPECT_EQ(E6_GetPingJson(), "{\"Type\":\"Ping\"}");
    // Launch angle, direction, ball speed, back spin, side spin.
    EXPECT_EQ(E6_GetBallDataJson(E6BallData{11.87999980866909, -2.0005, 41.25, 2600.0, -350.0}),
              "{\"Type\":\"SetBallData\",\"BallData\":{\"BackSpin\":2600.000, "
              "\"BallSpeed\":41.250,\t\"LaunchAngle\":11.880, \"LaunchDirection\":-2.001, "
              "\"SideSpin\":-350.000}}");

    EXPECT_EQ(E6_GetClubDataJson(E6ClubData{94.0, -0.0004, 15.0}),  // speed, face, path
              "{\"Type\":\"SetClubData\",\"ClubData\":{\"ClubAngleFace\":-0.000, "
              "\"ClubAnglePath\":15.000, \"ClubHeadSpeed\":94.000}}");

    EXPECT_EQ(E6_GetMiscDataJson(E6_MakeMiscData(0.2, true, 0)),
              "{\"Type\":\"SetMiscData\", \"MiscData\":{\"TeeHeight\":0.200, \"TeeType\":0, "
              "\"TeedUp\":\"true\"}}");
    EXPECT_EQ(E6_GetMiscDataJson(E6_MakeMiscData(1234.5678, false, -7)),
              "{\"Type\":\"SetMiscData\", \"MiscData\":{\"TeeHeight\":1234.568, \"TeeType\":-7, "
              "\"TeedUp\":\"false\"}}");

    // Too long for the 1024-byte buffer: nothing rather than a cut message.
    EXPECT_EQ(E6_GetBallDataJson(E6BallData{1e300, 1e300, 1e300, 1e300, 1e300}), "");
}

TEST(TruSimMessages, ClubTypeNamesWedgeRenamesAndUnknownCodes) {
    // The lookup takes the low byte, the wedges' rename the full value.
    const std::pair<int, const char*> rows[] = {
        {1, "Driver"},  {16, "3Iron"},  {15, "Putter"}, {11, "PWedge"},
        {12, "GWedge"}, {13, "SWedge"}, {14, "LWedge"}, {256 + 11, "PitchingWedge"}};
    for (const auto& [club, name] : rows) {
        EXPECT_EQ(E6_GetClubTypeJson(club),
                  std::string("{\"Type\":\"SetClubType\",\"ClubType\":\"") + name + "\"}");
    }
    orv::test::LogCapture log;
    EXPECT_EQ(E6_GetClubTypeJson(18), "");
    EXPECT_EQ(E6_GetClubTypeJson(0), "");
    EXPECT_EQ(orv::test::CountOf(log.Text(), "[E6_GetClubTypeJson("), 2u) << log.Text();
    EXPECT_EQ(orv::test::CountOf(log.Text(), "Unknown club: 18\n"), 1u);
    EXPECT_EQ(orv::test::CountOf(log.Text(), "Unknown club: 0\n"), 1u);
}

TEST(TruSimMessages, ClubRingSkipsTheSensorOnlyClubsAndWraps) {
    // {club, steps, club after}: the ring runs 1 2 3 16 5 .. 11 13 14 15.
    // Codes outside the ring (12 4 17) count from its head.
    const int rows[][3] = {{3, 1, 16},  {16, 1, 5},   {11, 1, 13},       {15, 1, 1},
                           {1, -1, 15}, {13, -1, 11}, {7, -28, 7},       {12, 1, 2},
                           {4, 0, 1},   {17, -2, 14}, {1, 2147483647, 2}};
    for (const auto& [club, steps, after] : rows) {
        EXPECT_EQ(E6_GetClubWithAddedCount(club, steps), after) << club << " " << steps;
    }
}

}  // namespace
