#include "ble/virtual/plausible_swing.h"

#include <array>

namespace {

struct ClubProfile {
    double headSpeed;  // same scale as the ball-flight model's reference speeds
    double distance;   // carry at that speed
};

constexpr uint8_t kPutter = 15;

// Indexed by club code 1..17; entry 0 stands in for an unknown club.
constexpr std::array<ClubProfile, 18> kProfiles = {{
    {76, 145},  // unknown: a 7 iron
    {94, 230},  // Driver
    {90, 210},  // 3 wood
    {88, 195},  // 5 wood
    {85, 180},  // 7 wood
    {80, 175},  // 4 iron
    {79, 165},  // 5 iron
    {78, 155},  // 6 iron
    {76, 145},  // 7 iron
    {74, 135},  // 8 iron
    {72, 125},  // 9 iron
    {70, 110},  // pitching wedge
    {69, 95},   // gap wedge
    {65, 80},   // sand wedge
    {60, 60},   // lob wedge
    {2.5, 6},   // putter: stroke speed and roll
    {85, 180},  // 3 iron
    {85, 185},  // 4 hybrid
}};

}  // namespace

SwingValues PlausibleSwing(uint8_t club, std::mt19937& random) {
    const ClubProfile& profile = kProfiles[club < kProfiles.size() ? club : 0];
    std::uniform_real_distribution<double> effort(0.88, 1.06);
    std::normal_distribution<double> path(0.0, club == kPutter ? 1.0 : 3.0);
    std::normal_distribution<double> face(0.0, club == kPutter ? 0.8 : 2.5);
    std::uniform_real_distribution<double> tempo(2.6, 3.4);
    std::uniform_int_distribution<int> release(60, 95);

    const double ratio = effort(random);
    SwingValues swing;
    swing.headSpeed = profile.headSpeed * ratio;
    swing.distance = profile.distance * ratio * ratio;
    swing.clubPath = path(random);
    swing.faceAngle = face(random);
    swing.tempo = tempo(random);
    swing.sensorSpeed = swing.headSpeed * 0.82;  // the sensor sits below the head
    swing.releaseRatio = static_cast<uint8_t>(release(random));
    return swing;
}

MotionSample StepMotion(uint8_t step) {
    if (step == 3) {
        return {-420, 310, 760, -1800, 240, 95};
    }
    return {12, -4, 1000, 3, -2, 1};  // at rest over the ball
}
