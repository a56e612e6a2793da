// Every message text sent to the simulator. The texts come from fixed
// templates, not a JSON serialiser: key order, blanks (and the one tab) and
// "%.3f" numbers are part of the interface. The client appends the zero byte.
#pragma once

#include <cstdint>
#include <string>

#include "simulator/shot_records.h"

std::string E6_GetPingJson();
std::string E6_GetHandShakeJson();
std::string E6_GetChallengeJson(const std::string& developer, const std::string& hash);
std::string E6_GetBallDataJson(const E6BallData& ball);
// Empty (one log line) for a code without a club entry.
std::string E6_GetClubTypeJson(int club);
// The simulator's name of a club ("Driver", "PWedge"); empty for an unknown code.
std::string E6_GetClubTypeName(int club);
std::string E6_GetClubDataJson(const E6ClubData& club);
std::string E6_GetMiscDataJson(const E6MiscData& misc);
std::string E6_GetSendShotJson();

// Steps `count` places through the club ring 1, 2, 3, 16, 5, 6, ..., 11, 13,
// 14, 15 (wrapping both ways); a club outside the ring starts at its head.
int E6_GetClubWithAddedCount(int club, int count);
