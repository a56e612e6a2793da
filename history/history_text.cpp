#include "history/history_text.h"

#include <cerrno>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <ctime>
#include <fstream>

#include "common/debug_log.h"

namespace orv::history {

namespace {

constexpr const char* kHeader =
    "id,time,session,sensor_club,club,club_name,head_speed,path,face,tempo,swing_distance,"
    "back_spin,ball_speed,launch_angle,launch_direction,side_spin,club_head_speed,"
    "club_angle_face,club_angle_path,outcome,distance_to_pin,clip";

// Quoted only when the field needs it, with quotes doubled.
std::string CsvField(const std::string& text) {
    if (text.find_first_of(",\"\r\n") == std::string::npos) {
        return text;
    }
    std::string quoted = "\"";
    for (const char c : text) {
        quoted += c;
        if (c == '"') {
            quoted += '"';
        }
    }
    return quoted + "\"";
}

}  // namespace

std::string FixedText(double value, int decimals) {
    if (!std::isfinite(value)) {
        return {};
    }
    char buffer[64];
    const auto result =
        std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::fixed, decimals);
    return std::string(buffer, result.ptr);
}

std::string UtcTimeText(int64_t wallTimeMs) {
    const std::time_t seconds = static_cast<std::time_t>(wallTimeMs / 1000);
    std::tm utc{};
    gmtime_r(&seconds, &utc);
    char text[40];
    const size_t length = std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%S", &utc);
    char millis[8];
    std::snprintf(millis, sizeof millis, ".%03dZ", static_cast<int>(wallTimeMs % 1000));
    return std::string(text, length) + millis;
}

void WriteCsv(const std::vector<HistoryRow>& rows, std::ostream& out) {
    out << kHeader << "\r\n";
    for (const HistoryRow& row : rows) {
        const Orvane::ShotReport& shot = row.shot;
        out << row.id << ',' << UtcTimeText(shot.wallTimeMs) << ',' << row.session << ','
            << shot.sensorClub << ',' << shot.club << ',' << CsvField(shot.clubName);
        // Three decimals, as the simulator gets them.
        for (const double value :
             {shot.headSpeed, shot.path, shot.face, shot.tempo, shot.swingDistance,
              shot.ball.BackSpin, shot.ball.BallSpeed, shot.ball.LaunchAngle,
              shot.ball.LaunchDirection, shot.ball.SideSpin, shot.clubData.ClubHeadSpeed,
              shot.clubData.ClubAngleFace, shot.clubData.ClubAnglePath}) {
            out << ',' << FixedText(value, 3);
        }
        out << ',' << Orvane::ShotOutcomeKey(shot.outcome) << ','
            << FixedText(shot.distanceToPin, 3) << ',' << CsvField(shot.clip) << "\r\n";
    }
}

bool ExportHistoryFile(const std::filesystem::path& history, const std::filesystem::path& csv) {
    if (!std::filesystem::exists(history)) {
        LOG_ERROR("No history at %s\n", history.c_str());
        return false;
    }
    std::unique_ptr<HistoryStore> store = HistoryStore::Open(history);
    if (!store) {
        return false;
    }
    std::ofstream out(csv, std::ios::binary | std::ios::trunc);
    WriteCsv(store->Shots({}), out);
    out.flush();
    if (!out) {
        LOG_ERROR("write error:0x%x\n", static_cast<unsigned>(errno));
        return false;
    }
    return true;
}

}  // namespace orv::history
