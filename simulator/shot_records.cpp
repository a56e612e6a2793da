#include "simulator/shot_records.h"

#include "simulator/ball_flight.h"
#include "simulator/club_tables.h"

E6BallData E6_MakeBallData(int club, int user, double headSpeed, double path, double face,
                           double ratio) {
    headSpeed = OrvCheckHeadSpeed(headSpeed);
    path = OrvCheckPathAngle(path);
    face = OrvCheckFaceAngle(face);
    const __club_value_table_st row = OrvGetClubValueTable(club);

    E6BallData ball;
    ball.LaunchAngle = OrvGetLaunchAngle(row, headSpeed);
    // The loft ratio is always 0 here, so its stage of the back-spin formula never runs.
    ball.BackSpin = OrvGetBackSpin(row, headSpeed, ratio, 0.0);
    ball.BallSpeed = OrvGetBallSpeed(row, headSpeed, ratio);
    ball.LaunchDirection = OrvGetLaunchDirection(row, user, headSpeed, path, face);
    // Face before path: the reverse of the launch direction's order.
    ball.SideSpin = OrvGetSideSpin(row, user, headSpeed, face, path);
    return ball;
}

E6ClubData E6_MakeClubData(double headSpeed, double path, double face) {
    E6ClubData club;
    club.ClubAngleFace = OrvCheckFaceAngle(face);
    club.ClubAnglePath = OrvCheckPathAngle(path);
    club.ClubHeadSpeed = OrvCheckHeadSpeed(headSpeed);
    return club;
}

E6MiscData E6_MakeMiscData(double teeHeight, bool teedUp, int32_t teeType) {
    E6MiscData misc;
    misc.TeeHeight = teeHeight;
    misc.TeedUp = teedUp;
    misc.TeeType = teeType;
    return misc;
}
