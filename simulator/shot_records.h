// The three records from which a shot's messages to the simulator are filled,
// and their makers. Plain values, passed and returned by copy.
#pragma once

#include <cstdint>

struct E6BallData {
    double LaunchAngle = 0.0;
    double LaunchDirection = 0.0;
    double BallSpeed = 0.0;
    double BackSpin = 0.0;
    double SideSpin = 0.0;
};

struct E6ClubData {
    double ClubHeadSpeed = 0.0;
    double ClubAngleFace = 0.0;
    double ClubAnglePath = 0.0;
};

struct E6MiscData {
    double TeeHeight = 0.0;
    bool TeedUp = false;
    int32_t TeeType = 0;
};

// Ball launch from a measured club delivery through the ball-flight model;
// `user` is accepted and not read.
E6BallData E6_MakeBallData(int club, int user, double headSpeed, double path, double face,
                           double ratio);
// The clamped delivery itself.
E6ClubData E6_MakeClubData(double headSpeed, double path, double face);
E6MiscData E6_MakeMiscData(double teeHeight, bool teedUp, int32_t teeType);
