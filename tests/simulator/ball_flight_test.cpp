#include "simulator/ball_flight.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

#include "common/debug_log.h"
#include "common/user_depends_data.h"
#include "simulator/shot_records.h"
#include "tests/support/test_support.h"

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
        for (double& k : gUserDependsData.clubSpeedFactor) {
            k = 1.0;
        }
        gUserDependsData.launchAngleScale = 1.0;
        gUserDependsData.sideSpinScale = 1.0;
    }
};

// The model written out a second time from its description, with every
// single-precision constant spelled as its widened double value.
namespace reference {

struct Row {
    int club;
    double speedFactor, refHeadSpeed, refBackSpin, refLaunchAngle;
};

double Single(double v) {
    return static_cast<double>(static_cast<float>(v));
}

Row RowOf(int club) {
    static const double table[18][4] = {
        {0, 0, 0, 0},           {1.48, 94, 2600, 13.2}, {1.47, 90, 2700, 11.2},
        {1.47, 88, 4500, 12.1}, {1.46, 85, 4600, 12.7}, {1.45, 80, 4800, 14.3},
        {1.42, 79, 5000, 14.8}, {1.39, 78, 5900, 17.1}, {1.37, 76, 6600, 19.0},
        {1.35, 74, 7500, 20.8}, {1.28, 72, 7600, 23.9}, {1.23, 70, 8400, 25.6},
        {1.21, 69, 8900, 28.1}, {1.19, 65, 9300, 32.2}, {1.09, 60, 10000, 37.8},
        {1.45, 2.5, 20, 2.5},   {1.46, 85, 4600, 12.7}, {1.46, 85, 4600, 12.7},
    };
    if (club < 1 || club > 17) {
        return Row{0, 0, 0, 0, 0};
    }
    const double* v = table[club];
    return Row{club, Single(v[0]), Single(v[1]), Single(v[2]), Single(v[3])};
}

double Clamp(double v, double lo, double hi) {
    return v < lo ? lo : (v > hi ? hi : v);
}

double Putter(double v) {
    struct Piece {
        double from, to, slope, base;
    };
    const Piece pieces[] = {
        {1.309999942779541, 1.75, 3.4089999198913574, 1.5},
        {1.75, 2.1500000953674316, 5.0, 3.0},
        {2.1500000953674316, 2.75, 3.3299999237060547, 5.0},
        {2.75, 4.099999904632568, 1.4800000190734863, 7.0},
        {4.099999904632568, 5.300000190734863, 1.6670000553131104, 9.0},
        {5.300000190734863, 6.699999809265137, 0.7139999866485596, 11.0},
        {6.699999809265137, std::numeric_limits<double>::infinity(), 1.2100000381469727, 12.0},
    };
    if (v < 1.309999942779541) {
        return v * 1.1449999809265137;
    }
    for (const Piece& p : pieces) {
        if (v >= p.from && (v < p.to || p.to == std::numeric_limits<double>::infinity())) {
            return (v - p.from) * p.slope + p.base;
        }
    }
    return 0.0;
}

E6BallData Ball(int club, double hs, double path, double face, double ratio, int difficulty,
                int clubType, double speedK, double angleScale, double spinScale) {
    hs = Clamp(hs, 0, 200);
    path = Clamp(path, -15, 15);
    face = Clamp(face, -15, 15);
    const Row row = RowOf(club);
    const bool putter = row.club == 15;
    E6BallData out;

    double speed = putter ? Putter(hs) : row.speedFactor * hs * (row.club != 0 ? speedK : 1.0);
    if (clubType != 1) {
        speed *= 0.95;
    }
    out.BallSpeed = Clamp(speed, 0, 250);

    const double r = hs / row.refHeadSpeed;
    const double L = row.refLaunchAngle;
    double angle;
    if (putter) {
        angle = hs >= row.refHeadSpeed ? std::min(r * L * 0.5, L) : 0.0;
    } else {
        angle = hs >= row.refHeadSpeed ? L - r * L * 0.10000000149011612
                                       : r * L * 0.10000000149011612 + L;
    }
    out.LaunchAngle = Clamp(angle * angleScale, 0, 80);

    out.LaunchDirection =
        Clamp(putter ? path * 0.10000000149011612 + face * 0.8999999761581421 : path, -15, 15);

    const double spin = putter ? ratio / row.refLaunchAngle * row.refBackSpin
                               : hs / row.refHeadSpeed * row.refBackSpin;
    out.BackSpin = Clamp(spin, -1000, 12000);

    const double m = difficulty == 1 ? 0.30000001192092896 : (difficulty == 2 ? 1.0 : 0.0);
    double f = 1.0;
    if ((path > 10 && face > 10) || (path < -10 && face < -10)) {
        f = 0.20000000298023224;
    } else if ((path > 5 && face > 5) || (path < -5 && face < -5)) {
        f = 0.4000000059604645;
    }
    const double base = putter ? 0.0 : f * face * 1.5 * 200.0;
    out.SideSpin = Clamp(Single(r) * base * Single(spinScale) * m * -1.0, -6000, 6000);
    return out;
}

}  // namespace reference

// Equal values, or both NaN.
bool Same(double actual, double expected) {
    return (std::isnan(actual) && std::isnan(expected)) || actual == expected;
}

TEST_F(BallFlight, ClampsLetNaNThrough) {
    EXPECT_EQ(OrvCheckHeadSpeed(250.0), 200.0);
    EXPECT_EQ(OrvCheckHeadSpeed(-1.0), 0.0);
    EXPECT_EQ(OrvCheckHeadSpeed(93.5), 93.5);
    EXPECT_EQ(OrvCheckPathAngle(-20.0), -15.0);
    EXPECT_EQ(OrvCheckFaceAngle(15.5), 15.0);
    EXPECT_EQ(&OrvCheckFaceAngle, &OrvCheckPathAngle);
    EXPECT_TRUE(std::isnan(OrvCheckHeadSpeed(kNaN)));
    EXPECT_TRUE(std::isnan(OrvCheckPathAngle(kNaN)));

    const E6ClubData club = E6_MakeClubData(250.0, -20.0, 16.0);
    EXPECT_EQ(club.ClubHeadSpeed, 200.0);
    EXPECT_EQ(club.ClubAnglePath, -15.0);
    EXPECT_EQ(club.ClubAngleFace, 15.0);

    const E6MiscData misc = E6_MakeMiscData(0.2, true, 3);
    EXPECT_EQ(misc.TeeHeight, 0.2);
    EXPECT_TRUE(misc.TeedUp);
    EXPECT_EQ(misc.TeeType, 3);
}

TEST_F(BallFlight, DriverAtReferenceSpeedWithClubAndWithStick) {
    gUserDependsData.launchAngleScale = 1.25;
    E6BallData ball;
    std::string log;
    {
        orv::test::StdoutCapture capture;
        ShowLog(true, false);
        ball = E6_MakeBallData(1, 1, 94.0, 0.0, 0.0, 0.0);
        gUserDependsData.clubType = 0;
        const E6BallData stick = E6_MakeBallData(1, 1, 94.0, 0.0, 0.0, 0.0);
        ShowLog(false, false);
        log = capture.Text();
        EXPECT_DOUBLE_EQ(stick.BallSpeed, 132.16400170326233);
    }
    EXPECT_DOUBLE_EQ(ball.BallSpeed, 139.12000179290771);  // 1.48f x 94
    EXPECT_DOUBLE_EQ(ball.LaunchAngle, 11.87999980866909 * 1.25);
    EXPECT_EQ(ball.BackSpin, 2600.0);
    EXPECT_EQ(ball.LaunchDirection, 0.0);
    EXPECT_EQ(orv::test::CountOf(log, "ballSpeed <- swing stick\n"), 1u) << log;
    EXPECT_EQ(orv::test::CountOf(log, "] [OrvGetBallSpeed("), 1u) << log;
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
    EXPECT_EQ(OrvGetPutterBallSpeed(std::numeric_limits<double>::infinity()),
              std::numeric_limits<double>::infinity());

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
    gUserDependsData.swingLevel = 2;
    const E6BallData strong = E6_MakeBallData(1, 1, 94.0, 11.0, 12.0, 0.0);
    EXPECT_EQ(strong.SideSpin, -720.0000107288361);  // 0.2 x 12 x 300, negated
    EXPECT_EQ(E6_MakeBallData(1, 1, 94.0, 6.0, 6.0, 0.0).SideSpin,
              -(0.4000000059604645 * 6.0 * 1.5 * 200.0));
    EXPECT_EQ(E6_MakeBallData(1, 1, 94.0, -11.0, -12.0, 0.0).SideSpin, 720.0000107288361);
    EXPECT_EQ(E6_MakeBallData(1, 1, 94.0, -11.0, 12.0, 0.0).SideSpin, -3600.0);

    gUserDependsData.swingLevel = 0;
    const double none = E6_MakeBallData(1, 1, 94.0, 11.0, 12.0, 0.0).SideSpin;
    EXPECT_EQ(none, 0.0);
    EXPECT_TRUE(std::signbit(none));
    gUserDependsData.swingLevel = 7;
    EXPECT_EQ(E6_MakeBallData(1, 1, 94.0, 11.0, 12.0, 0.0).SideSpin, 0.0);

    gUserDependsData.swingLevel = 2;
    gUserDependsData.sideSpinScale = 10.0;
    EXPECT_EQ(E6_MakeBallData(1, 1, 94.0, 0.0, 15.0, 0.0).SideSpin, -6000.0);
}

TEST_F(BallFlight, BackSpinLoftStages) {
    const __club_value_table_st iron7 = OrvGetClubValueTable(8);
    const double base = 76.0 / iron7.refHeadSpeed * iron7.refBackSpin;
    const struct {
        double loft, factor;
    } stages[] = {
        {1.0, 0.949999988079071},
        {1.04, 0.949999988079071},
        {1.0499999523162842, 0.699999988079071},
        {0.97, 0.8999999761581421},
        {0.949999988079071, 0.8999999761581421},
        {0.92, 0.8500000238418579},
        {0.87, 0.800000011920929},
        {0.5, 0.699999988079071},
    };
    for (const auto& stage : stages) {
        EXPECT_EQ(OrvGetBackSpin(iron7, 76.0, 0.0, stage.loft), base * stage.factor * stage.loft)
            << stage.loft;
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

struct UserSettings {
    double speedK, angleScale, spinScale;
    int difficulty, clubType;

    void Apply() const {
        for (double& k : gUserDependsData.clubSpeedFactor) {
            k = speedK;
        }
        gUserDependsData.launchAngleScale = angleScale;
        gUserDependsData.sideSpinScale = spinScale;
        gUserDependsData.swingLevel = difficulty;
        gUserDependsData.clubType = clubType;
    }
};

// Every swing of the grid with one club under the applied settings; the
// number of swings checked, or -1 after the first mismatch.
int CheckClub(int club, const UserSettings& user) {
    static const double speeds[] = {-5.0, 0.0,  1.0,  2.0,   2.5,   3.0,   7.0, 59.99,
                                    60.0, 76.0, 94.0, 120.0, 200.0, 250.0, kNaN};
    static const double angles[] = {-20.0, -11.0, -6.0, -5.0, 0.0, 5.0, 6.0, 10.5, 20.0, kNaN};
    static const double ratios[] = {0.0, 0.75};
    int checked = 0;
    for (double hs : speeds) {
        for (double path : angles) {
            for (double face : angles) {
                for (double ratio : ratios) {
                    const E6BallData got = E6_MakeBallData(club, 1, hs, path, face, ratio);
                    const E6BallData want =
                        reference::Ball(club, hs, path, face, ratio, user.difficulty, user.clubType,
                                        user.speedK, user.angleScale, user.spinScale);
                    if (!Same(got.BallSpeed, want.BallSpeed) ||
                        !Same(got.LaunchAngle, want.LaunchAngle) ||
                        !Same(got.LaunchDirection, want.LaunchDirection) ||
                        !Same(got.BackSpin, want.BackSpin) || !Same(got.SideSpin, want.SideSpin)) {
                        ADD_FAILURE()
                            << "club " << club << " hs " << hs << " path " << path << " face "
                            << face << " ratio " << ratio << " difficulty " << user.difficulty
                            << " type " << user.clubType << ": got " << got.BallSpeed << "/"
                            << got.LaunchAngle << "/" << got.LaunchDirection << "/" << got.BackSpin
                            << "/" << got.SideSpin << " want " << want.BallSpeed << "/"
                            << want.LaunchAngle << "/" << want.LaunchDirection << "/"
                            << want.BackSpin << "/" << want.SideSpin;
                        return -1;
                    }
                    ++checked;
                }
            }
        }
    }
    return checked;
}

TEST_F(BallFlight, GridAgainstReference) {
    std::vector<UserSettings> settings;
    for (int difficulty = 0; difficulty <= 3; ++difficulty) {
        for (int clubType = 0; clubType <= 1; ++clubType) {
            settings.push_back({1.0, 1.0, 1.0, difficulty, clubType});
            settings.push_back({1.1, 0.9, 1.3, difficulty, clubType});
        }
    }
    int checked = 0;
    for (const UserSettings& user : settings) {
        user.Apply();
        // 18 has no row: a zero row is made for it.
        for (int club = 1; club <= 18; ++club) {
            const int swings = CheckClub(club, user);
            ASSERT_GT(swings, 0);
            checked += swings;
        }
    }
    EXPECT_EQ(checked, 16 * 18 * 15 * 10 * 10 * 2);
}

}  // namespace
