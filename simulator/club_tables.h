// Per-club reference values of the ball-flight model and the per-club swing
// sensitivity rows sent to the sensor on a club change.
#pragma once

#include <cstdint>
#include <map>

#include "protocol/command_models.h"

struct __club_value_table_st {
    int32_t club;
    float speedFactor;     // ball speed per unit of head speed
    float refHeadSpeed;    // putter: stroke speed of the reference launch
    float refBackSpin;     // rpm at the reference head speed
    float refLaunchAngle;  // degrees at the reference head speed
    float extraFactor;     // carried along, read by no formula
};

struct __swing_sensitivity_st {
    int32_t club;
    int16_t lowThreshold[3];  // one per sensitivity level 0, 1, 2
    int16_t highThreshold[3];
    float scale[3];
    int16_t minValue;
    int16_t maxValue;
};

// Both tables grow by a zero row when an unknown code is looked up; touch them
// only through the lookups below, which serialise that growth.
extern std::map<uint8_t, __club_value_table_st> gClubValueTable;
extern std::map<uint8_t, __swing_sensitivity_st> gClubSensitivityTable;

// Copies of the row for `club` (reduced to 8 bits); an unknown code yields a
// zero-filled row, which stays in the table.
__club_value_table_st OrvGetClubValueTable(int club);
__swing_sensitivity_st OrvGetClubSensitivity(int club);

// The sensor's club-select command for `club` at sensitivity `level` (0..2;
// a level outside that range is taken as the nearest one). Returned as a
// prvalue: `new OrvCmdManualClubSelectModel(MakeClubSelectCommand(c, l))`
// places it on the heap without a copy.
OrvCmdManualClubSelectModel MakeClubSelectCommand(int club, int level);
