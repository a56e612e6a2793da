#pragma once

#include <cstdint>

// Wall-clock time in milliseconds since the system epoch: the time base of
// log stamps, link liveness and message throttling.
int64_t WallClockMs();
