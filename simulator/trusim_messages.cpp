#include "simulator/trusim_messages.h"

#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <iterator>

#include "common/c_format.h"
#include "common/debug_log.h"
#include "protocol/code_tables.h"

namespace {

// Formats into 1024 bytes; a text that would not fit comes back empty rather
// than cut, so no half message ever goes out.
std::string ORV_PRINTF_LIKE(1, 2) Format(const char* format, ...) {
    char buffer[1024];
    va_list args;
    va_start(args, format);
    const int length = orv::CFormatV(buffer, sizeof buffer, format, args);
    va_end(args);
    if (length < 0 || static_cast<size_t>(length) >= sizeof buffer) {
        return {};
    }
    return std::string(buffer, static_cast<size_t>(length));
}

// 4 (7 wood), 12 (gap wedge) and 17 (4 hybrid) are left out, and 16 (3 iron)
// sits after the 5 wood: this is the order the user steps through.
constexpr int kClubRing[] = {1, 2, 3, 16, 5, 6, 7, 8, 9, 10, 11, 13, 14, 15};

}  // namespace

std::string E6_GetPingJson() {
    return R"({"Type":"Ping"})";
}

std::string E6_GetHandShakeJson() {
    return R"({"Type":"Handshake"})";
}

std::string E6_GetSendShotJson() {
    return R"({"Type":"SendShot"})";
}

std::string E6_GetChallengeJson(const std::string& developer, const std::string& hash) {
    return Format(R"({"Type":"Challenge", "Developer":"%s","Hash":"%s"})", developer.c_str(),
                  hash.c_str());
}

std::string E6_GetBallDataJson(const E6BallData& ball) {
    // The separator after the ball speed is a comma and a tab, on purpose.
    return Format(
        "{\"Type\":\"SetBallData\",\"BallData\":{\"BackSpin\":%.3f, \"BallSpeed\":%.3f,\t"
        "\"LaunchAngle\":%.3f, \"LaunchDirection\":%.3f, \"SideSpin\":%.3f}}",
        ball.BackSpin, ball.BallSpeed, ball.LaunchAngle, ball.LaunchDirection, ball.SideSpin);
}

std::string E6_GetClubDataJson(const E6ClubData& club) {
    return Format(
        R"({"Type":"SetClubData","ClubData":{"ClubAngleFace":%.3f, "ClubAnglePath":%.3f, "ClubHeadSpeed":%.3f}})",
        club.ClubAngleFace, club.ClubAnglePath, club.ClubHeadSpeed);
}

std::string E6_GetMiscDataJson(const E6MiscData& misc) {
    // "TeedUp" is a quoted string, not a JSON boolean.
    return Format(
        R"({"Type":"SetMiscData", "MiscData":{"TeeHeight":%.3f, "TeeType":%d, "TeedUp":"%s"}})",
        misc.TeeHeight, misc.TeeType, misc.TeedUp ? "true" : "false");
}

std::string E6_GetClubTypeName(int club) {
    const __code_tag* entry = OrvGetClubCodeDef(static_cast<uint8_t>(club & 0xFF));
    if (entry == nullptr) {
        return {};
    }
    // The simulator names the wedges differently; the rename looks at the
    // full code, the table lookup at its low byte only.
    switch (club) {
        case 11:
            return "PWedge";
        case 12:
            return "GWedge";
        case 13:
            return "SWedge";
        case 14:
            return "LWedge";
        default:
            return entry->name;
    }
}

std::string E6_GetClubTypeJson(int club) {
    const std::string name = E6_GetClubTypeName(club);
    if (name.empty()) {
        LOG_INFO("Unknown club: %d\n", club);
        return {};
    }
    return Format(R"({"Type":"SetClubType","ClubType":"%s"})", name.c_str());
}

int E6_GetClubWithAddedCount(int club, int count) {
    const int64_t size = static_cast<int64_t>(std::size(kClubRing));
    int64_t position = 0;
    for (int64_t i = 0; i < size; ++i) {
        if (kClubRing[i] == club) {
            position = i;
            break;
        }
    }
    int64_t next = (position + count) % size;
    if (next < 0) {
        next += size;
    }
    return kClubRing[next];
}
