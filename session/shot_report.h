// What became of a swing that turned into a shot, told to whoever keeps
// shots (the history). The session stays free of what the listener does.
#pragma once

#include <cstdint>
#include <string>

#include "simulator/shot_records.h"

namespace Orvane {

enum class ShotOutcome {
    kSent,              // SendShot was written to the simulator
    kNoSimulator,       // no link to the simulator
    kNotAuthenticated,  // linked but not logged in
    kSendFailed,        // a message of the shot could not be written
    kRefusedNotFinite,  // the values were not numbers (the simulator named no known club)
};

// Stable key kept in files ("sent", "no_simulator", ...).
const char* ShotOutcomeKey(ShotOutcome outcome);
// The key back; false for a key no version ever wrote.
bool ShotOutcomeFromKey(const std::string& key, ShotOutcome* outcome);

// The message shown to the golfer when the shot went nowhere; empty once sent.
const char* ShotOutcomeText(ShotOutcome outcome);

struct ShotReport {
    int64_t wallTimeMs = 0;
    int sensorClub = 0;    // the sensor's club code at the swing
    int club = 0;          // the code the shot was computed for
    std::string clubName;  // that club as the simulator names it
    // The swing record as measured; path and face with their signs.
    double headSpeed = 0.0;
    double path = 0.0;
    double face = 0.0;
    double tempo = 0.0;
    double swingDistance = 0.0;
    E6BallData ball;
    E6ClubData clubData;
    ShotOutcome outcome = ShotOutcome::kSent;
    double distanceToPin = 0.0;  // in force at the swing; 0 when unknown
    std::string clip;            // the swing's clip file; empty when none was recorded
};

// Told once per shot on the session's receive thread, after the send: an
// implementation hands the report on and returns at once.
class ShotListener {
public:
    virtual ~ShotListener() = default;
    virtual void OnShotRecorded(const ShotReport& shot) = 0;
};

}  // namespace Orvane
