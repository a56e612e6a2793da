#include "simulator/ball_flight.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "common/user_depends_data.h"
#include "simulator/shot_records.h"

namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

// Restores the user values the tests change.
class BallFlight : public ::testing::Test {
protected:
    void SetUp() override { Reset(); }
    void TearDown() override { Reset(); }

    static void Reset() {
        gUserDependsData.swingLevel = 1;
        gUserDependsData.clubType = 1;
        gUserDependsData.launchAngleScale = 1.0;
        gUserDependsData.sideSpinScale = 1.0;
    }
};

TEST_F(BallFlight, ClampsLetNaNThrough) {
    EXPECT_EQ(OrvCheckHeadSpeed(-1.0), 0.0);
    EXPECT_TRUE(std::isnan(OrvCheckHeadSpeed(kNaN)));
    EXPECT_TRUE(std::isnan(OrvCheckPathAngle(kNaN)));

    const E6ClubData club = E6_MakeClubData(250.0, -20.0, 16.0);
    EXPECT_EQ(club.ClubHeadSpeed, 200.0);
    EXPECT_EQ(club.ClubAnglePath, -15.0);
    EXPECT_EQ(club.ClubAngleFace, 15.0);
}

TEST_F(BallFlight, DriverAtReferenceSpeedWithClubAndWithStick) {
    gUserDependsData.launchAngleScale = 1.25;
    const E6BallData ball = E6_MakeBallData(1, 1, 94.0, 0.0, 0.0, 0.0);
    gUserDependsData.clubType = 0;
    EXPECT_DOUBLE_EQ(E6_MakeBallData(1, 1, 94.0, 0.0, 0.0, 0.0).BallSpeed, 132.16400170326233);
    EXPECT_DOUBLE_EQ(ball.BallSpeed, 139.12000179290771);  // 1.48f x 94
    EXPECT_DOUBLE_EQ(ball.LaunchAngle, 11.87999980866909 * 1.25);
    EXPECT_EQ(ball.BackSpin, 2600.0);
    EXPECT_EQ(ball.LaunchDirection, 0.0);
}

TEST_F(BallFlight, PutterPiecesAndLaunch) {
    const E6BallData ball = E6_MakeBallData(15, 1, 2.0, 3.0, 12.0, 0.5);
    EXPECT_EQ(ball.BallSpeed, 4.25);
    EXPECT_EQ(ball.LaunchAngle, 0.0);  // below the reference stroke speed 2.5
    EXPECT_EQ(ball.SideSpin, 0.0);
    EXPECT_DOUBLE_EQ(ball.BackSpin, 0.5 / 2.5 * 20.0);
    EXPECT_DOUBLE_EQ(ball.LaunchDirection, 3.0 * 0.10000000149011612 + 12.0 * 0.8999999761581421);

    EXPECT_DOUBLE_EQ(OrvGetPutterBallSpeed(1.0), 1.1449999809265137);
    // The pieces do not quite meet at 1.31.
    EXPECT_NEAR(OrvGetPutterBallSpeed(1.3099999), 1.49995, 1e-5);
    EXPECT_EQ(OrvGetPutterBallSpeed(1.309999942779541), 1.5);
    EXPECT_EQ(OrvGetPutterBallSpeed(1.75), 3.0);
    EXPECT_DOUBLE_EQ(OrvGetPutterBallSpeed(10.0),
                     (10.0 - 6.699999809265137) * 1.2100000381469727 + 12.0);
    EXPECT_EQ(OrvGetPutterBallSpeed(kNaN), 0.0);

    // At and above the reference: half the ratio, capped at the reference angle.
    const __club_value_table_st putter = OrvGetClubValueTable(15);
    EXPECT_DOUBLE_EQ(OrvGetLaunchAngle(putter, 2.5), 1.25);
    EXPECT_DOUBLE_EQ(OrvGetLaunchAngle(putter, 5.0), 2.5);
    EXPECT_DOUBLE_EQ(OrvGetLaunchAngle(putter, 9.0), 2.5);
}

TEST_F(BallFlight, LaunchAngleJumpsAtTheReferenceSpeed) {
    const __club_value_table_st iron7 = OrvGetClubValueTable(8);
    EXPECT_DOUBLE_EQ(OrvGetLaunchAngle(iron7, 60.0), 20.500000022351742);
    const double below = OrvGetLaunchAngle(iron7, std::nextafter(76.0, 0.0));
    const double at = OrvGetLaunchAngle(iron7, 76.0);
    EXPECT_NEAR(below, 1.1 * 19.0, 1e-5);
    EXPECT_NEAR(at, 0.9 * 19.0, 1e-5);
    gUserDependsData.launchAngleScale = 100.0;
    EXPECT_EQ(OrvGetLaunchAngle(iron7, 76.0), 80.0);
}

TEST_F(BallFlight, SideSpinDampingAndDifficulty) {
    const struct {
        int level;
        double path, face, scale, sideSpin;
    } rows[] = {
        {2, 11.0, 12.0, 1.0, -720.0000107288361},  // 0.2f x 12 x 300, negated
        {2, 6.0, 6.0, 1.0, -720.0000107288361},    // 0.4f x 6 x 1.5 x 200, negated
        {2, -11.0, -12.0, 1.0, 720.0000107288361},
        {2, -11.0, 12.0, 1.0, -3600.0},
        {0, 11.0, 12.0, 1.0, -0.0},  // no side spin at level 0, but the sign stays
        {7, 11.0, 12.0, 1.0, 0.0},   // any sign
        {2, 0.0, 15.0, 10.0, -6000.0},
    };
    for (const auto& row : rows) {
        gUserDependsData.swingLevel = row.level;
        gUserDependsData.sideSpinScale = row.scale;
        const double spin = E6_MakeBallData(1, 1, 94.0, row.path, row.face, 0.0).SideSpin;
        EXPECT_EQ(spin, row.sideSpin) << row.level << " " << row.path << " " << row.face;
        EXPECT_TRUE(std::signbit(spin) || !std::signbit(row.sideSpin)) << row.level;
    }
}

TEST_F(BallFlight, BackSpinLoftStages) {
    const __club_value_table_st iron7 = OrvGetClubValueTable(8);
    const double base = 76.0 / iron7.refHeadSpeed * iron7.refBackSpin;
    // Loft ratio -> factor, at and around the stage bounds (floats widened).
    const std::pair<double, double> stages[] = {
        {1.04, 0.949999988079071},  {1.0499999523162842, 0.699999988079071},
        {0.97, 0.8999999761581421}, {0.949999988079071, 0.8999999761581421},
        {0.92, 0.8500000238418579}, {0.87, 0.800000011920929},
        {0.5, 0.699999988079071}};
    for (const auto& [loft, factor] : stages) {
        EXPECT_EQ(OrvGetBackSpin(iron7, 76.0, 0.0, loft), base * factor * loft) << loft;
    }
    // Woods, driver, putter and 4 hybrid have no loft stage.
    EXPECT_EQ(OrvGetBackSpin(OrvGetClubValueTable(1), 94.0, 0.0, 0.5), 2600.0);
    EXPECT_EQ(OrvGetBackSpin(OrvGetClubValueTable(17), 85.0, 0.0, 0.5), 4600.0);
    EXPECT_EQ(OrvGetBackSpin(OrvGetClubValueTable(16), 85.0, 0.0, 0.5),
              4600.0 * 0.699999988079071 * 0.5);
    EXPECT_EQ(OrvGetBackSpin(OrvGetClubValueTable(14), 200.0, 0.0, 0.0), 12000.0);
}

TEST_F(BallFlight, UnknownClubFollowsFloatingPointRules) {
    const E6BallData ball = E6_MakeBallData(99, 1, 50.0, 2.0, 3.0, 0.0);
    EXPECT_EQ(ball.BallSpeed, 0.0);
    EXPECT_TRUE(std::isnan(ball.LaunchAngle));  // 0 - inf x 0
    EXPECT_TRUE(std::isnan(ball.BackSpin));
    EXPECT_EQ(ball.LaunchDirection, 2.0);
    EXPECT_EQ(ball.SideSpin, -6000.0);  // inf ratio, clamped
}

}  // namespace
