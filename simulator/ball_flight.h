// The ball-flight model: turns a measured club delivery into the launch values
// the simulator expects. All arithmetic is double; single-precision constants
// are used widened, as the model was tuned with them. Clamps let a NaN through.
#pragma once

#include "simulator/club_tables.h"

constexpr int kPutterClub = 15;

double OrvCheckHeadSpeed(double v);  // [0, 200]
double OrvCheckPathAngle(double v);  // [-15, 15]
// Path and face share one clamp.
inline constexpr auto& OrvCheckFaceAngle = OrvCheckPathAngle;

// `ratio` is accepted and not read (the putter's speed comes from its own curve).
double OrvGetBallSpeed(const __club_value_table_st& row, double headSpeed, double ratio);
double OrvGetPutterBallSpeed(double headSpeed);
double OrvGetLaunchAngle(const __club_value_table_st& row, double headSpeed);
double OrvGetLaunchDirection(const __club_value_table_st& row, int user, double headSpeed,
                             double path, double face);
double OrvGetBackSpin(const __club_value_table_st& row, double headSpeed, double ratio,
                      double loftRatio);
double OrvGetSideSpin(const __club_value_table_st& row, int user, double headSpeed, double face,
                      double path);
