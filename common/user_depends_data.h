// Per-user values that the swing, club and ball-flight logic read directly.
// The settings store loads and saves the first four; the factors and scales
// stay at 1.0 unless a caller tunes them.
#pragma once

#include <atomic>
#include <cstdint>

struct UserDependsData {
    // Read by the session's threads while the UI thread may store new values.
    std::atomic<int32_t> swingLevel{1};        // "SwingLevel" 0..2, the ball-flight difficulty
    std::atomic<int32_t> swingSensitivity{1};  // "SwingSensitivity" 0..2, club sensitivity row
    std::atomic<int32_t> hands{0};             // shown in the settings dump only
    std::atomic<int32_t> clubType{0};          // 1 a real club, else a swing stick

    // Indexed by club code 1..17; index 0 unused.
    double clubSpeedFactor[18] = {1.0, 1.0, 1.0, 1.0, 1.0, 1.0, 1.0, 1.0, 1.0,
                                  1.0, 1.0, 1.0, 1.0, 1.0, 1.0, 1.0, 1.0, 1.0};
    double launchAngleScale = 1.0;
    double sideSpinScale = 1.0;
};

extern UserDependsData gUserDependsData;
