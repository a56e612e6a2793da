#include "app/shot_text.h"

#include "common/c_format.h"
#include "protocol/code_tables.h"

namespace orv {

std::string ClubName(int club) {
    const __code_tag* tag =
        club > 0 && club < 256 ? OrvGetClubCodeDef(static_cast<uint8_t>(club)) : nullptr;
    return tag != nullptr ? tag->description : "Club " + std::to_string(club);
}

std::string ShotLine(const Orvane::LastShotInfo& shot) {
    // Console lines are read by scripts: numbers the C way.
    return CFormat(
        "%s: ball speed %.1f, launch %.1f, direction %.1f, back spin %.0f, side spin "
        "%.0f, head speed %.1f",
        ClubName(shot.club).c_str(), shot.ball.BallSpeed, shot.ball.LaunchAngle,
        shot.ball.LaunchDirection, shot.ball.BackSpin, shot.ball.SideSpin,
        shot.clubData.ClubHeadSpeed);
}

}  // namespace orv
