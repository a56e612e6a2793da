#include "simulator/trusim_messages.h"

#include <gtest/gtest.h>

#include <string>

#include "common/debug_log.h"
#include "tests/support/test_support.h"

namespace {

TEST(TruSimMessages, FixedTexts) {
    EXPECT_EQ(E6_GetPingJson(), "{\"Type\":\"Ping\"}");
    EXPECT_EQ(E6_GetHandShakeJson(), "{\"Type\":\"Handshake\"}");
    EXPECT_EQ(E6_GetSendShotJson(), "{\"Type\":\"SendShot\"}");
}

TEST(TruSimMessages, ChallengeKeepsItsOddSpacingAndTheIdentifiersCase) {
    EXPECT_EQ(E6_GetChallengeJson("7C1E54A2-9B3D-4F60-8A17-D2E9B0C46F58",
                                  "847ac550e2691a368685df0000a20d01"),
              "{\"Type\":\"Challenge\", \"Developer\":\"7C1E54A2-9B3D-4F60-8A17-D2E9B0C46F58\","
              "\"Hash\":\"847ac550e2691a368685df0000a20d01\"}");
}

TEST(TruSimMessages, ShotRecordsWithThreeDecimalsAndTheTab) {
    E6BallData ball;
    ball.BackSpin = 2600.0;
    ball.BallSpeed = 41.25;
    ball.LaunchAngle = 11.87999980866909;
    ball.LaunchDirection = -2.0005;
    ball.SideSpin = -350.0;
    EXPECT_EQ(E6_GetBallDataJson(ball),
              "{\"Type\":\"SetBallData\",\"BallData\":{\"BackSpin\":2600.000, "
              "\"BallSpeed\":41.250,\t\"LaunchAngle\":11.880, \"LaunchDirection\":-2.001, "
              "\"SideSpin\":-350.000}}");

    E6ClubData club;
    club.ClubHeadSpeed = 94.0;
    club.ClubAngleFace = -0.0004;
    club.ClubAnglePath = 15.0;
    EXPECT_EQ(E6_GetClubDataJson(club),
              "{\"Type\":\"SetClubData\",\"ClubData\":{\"ClubAngleFace\":-0.000, "
              "\"ClubAnglePath\":15.000, \"ClubHeadSpeed\":94.000}}");

    EXPECT_EQ(E6_GetMiscDataJson(E6_MakeMiscData(0.2, true, 0)),
              "{\"Type\":\"SetMiscData\", \"MiscData\":{\"TeeHeight\":0.200, \"TeeType\":0, "
              "\"TeedUp\":\"true\"}}");
    EXPECT_EQ(E6_GetMiscDataJson(E6_MakeMiscData(1234.5678, false, -7)),
              "{\"Type\":\"SetMiscData\", \"MiscData\":{\"TeeHeight\":1234.568, \"TeeType\":-7, "
              "\"TeedUp\":\"false\"}}");

    // Too long for the 1024-byte buffer: nothing rather than a cut message.
    ball = E6BallData{1e300, 1e300, 1e300, 1e300, 1e300};
    EXPECT_EQ(E6_GetBallDataJson(ball), "");
}

TEST(TruSimMessages, ClubTypeNamesWedgeRenamesAndUnknownCodes) {
    EXPECT_EQ(E6_GetClubTypeJson(1), "{\"Type\":\"SetClubType\",\"ClubType\":\"Driver\"}");
    EXPECT_EQ(E6_GetClubTypeJson(16), "{\"Type\":\"SetClubType\",\"ClubType\":\"3Iron\"}");
    EXPECT_EQ(E6_GetClubTypeJson(15), "{\"Type\":\"SetClubType\",\"ClubType\":\"Putter\"}");
    EXPECT_EQ(E6_GetClubTypeJson(11), "{\"Type\":\"SetClubType\",\"ClubType\":\"PWedge\"}");
    EXPECT_EQ(E6_GetClubTypeJson(12), "{\"Type\":\"SetClubType\",\"ClubType\":\"GWedge\"}");
    EXPECT_EQ(E6_GetClubTypeJson(13), "{\"Type\":\"SetClubType\",\"ClubType\":\"SWedge\"}");
    EXPECT_EQ(E6_GetClubTypeJson(14), "{\"Type\":\"SetClubType\",\"ClubType\":\"LWedge\"}");
    // The lookup takes the low byte, the rename the full value.
    EXPECT_EQ(E6_GetClubTypeJson(256 + 11),
              "{\"Type\":\"SetClubType\",\"ClubType\":\"PitchingWedge\"}");

    std::string log;
    {
        orv::test::StdoutCapture capture;
        ShowLog(true, false);
        const std::string unknown = E6_GetClubTypeJson(18);
        const std::string none = E6_GetClubTypeJson(0);
        ShowLog(false, false);
        log = capture.Text();
        EXPECT_EQ(unknown, "");
        EXPECT_EQ(none, "");
    }
    EXPECT_EQ(orv::test::CountOf(log, "[E6_GetClubTypeJson("), 2u) << log;
    EXPECT_EQ(orv::test::CountOf(log, "Unknown club: 18\n"), 1u) << log;
    EXPECT_EQ(orv::test::CountOf(log, "Unknown club: 0\n"), 1u) << log;
}

TEST(TruSimMessages, ClubRing) {
    const int ring[] = {1, 2, 3, 16, 5, 6, 7, 8, 9, 10, 11, 13, 14, 15};
    for (int i = 0; i < 14; ++i) {
        EXPECT_EQ(E6_GetClubWithAddedCount(ring[i], 1), ring[(i + 1) % 14]) << ring[i];
        EXPECT_EQ(E6_GetClubWithAddedCount(ring[i], -1), ring[(i + 13) % 14]) << ring[i];
        EXPECT_EQ(E6_GetClubWithAddedCount(ring[i], 28), ring[i]);
        EXPECT_EQ(E6_GetClubWithAddedCount(ring[i], -28), ring[i]);
        EXPECT_EQ(E6_GetClubWithAddedCount(ring[i], 0), ring[i]);
    }
    EXPECT_EQ(E6_GetClubWithAddedCount(15, 1), 1);
    EXPECT_EQ(E6_GetClubWithAddedCount(1, -1), 15);
    EXPECT_EQ(E6_GetClubWithAddedCount(3, 1), 16);
    EXPECT_EQ(E6_GetClubWithAddedCount(16, 1), 5);
    EXPECT_EQ(E6_GetClubWithAddedCount(11, 1), 13);
    // Codes outside the ring count from its head.
    EXPECT_EQ(E6_GetClubWithAddedCount(12, 1), 2);
    EXPECT_EQ(E6_GetClubWithAddedCount(4, 0), 1);
    EXPECT_EQ(E6_GetClubWithAddedCount(17, -2), 14);
    EXPECT_EQ(E6_GetClubWithAddedCount(1, 15), 2);
    EXPECT_EQ(E6_GetClubWithAddedCount(1, -15), 15);
    EXPECT_EQ(E6_GetClubWithAddedCount(1, 2147483647), 2);  // 2147483647 % 14 == 1
}

}  // namespace
