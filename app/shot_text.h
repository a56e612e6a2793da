#pragma once

#include <string>

#include "session/orv_manager.h"

namespace orv {

// "Driver: ball speed 139.1, launch 11.9, direction -2.0, back spin 2600, side spin -350, head
// speed 94.0"
std::string ShotLine(const Orvane::LastShotInfo& shot);

// Display name of a club code ("3 Iron"), or "Club <n>" for an unknown code.
std::string ClubName(int club);

}  // namespace orv
