#include "protocol/data_records.h"

#include <cstdio>

#include "common/debug_log.h"

namespace {

float Scaled(uint32_t raw, double divisor) {
    return static_cast<float>(static_cast<double>(raw) / divisor);
}

int16_t GetSigned(bb* frame) {
    return static_cast<int16_t>(bb_get_short(frame));
}

// The six motion samples that raw and simulator-raw records open with.
void ReadSamples(bb* frame, int16_t& ax, int16_t& ay, int16_t& az, int16_t& gx, int16_t& gy,
                 int16_t& gz) {
    ax = GetSigned(frame);
    ay = GetSigned(frame);
    az = GetSigned(frame);
    gx = GetSigned(frame);
    gy = GetSigned(frame);
    gz = GetSigned(frame);
}

}  // namespace

bool OrvDataBaseModel::ParseData() {
    type = bb_get(buffer);
    length = bb_get(buffer);
    if (!Parse(buffer)) {
        return false;
    }
    checksum = bb_get(buffer);
    return true;
}

bool OrvDataEchoModel::Parse(bb* frame) {
    event = bb_get(frame);
    result = bb_get(frame);
    return true;
}

bool OrvDataClubInfoModel::Parse(bb* frame) {
    club = bb_get(frame);
    return true;
}

bool OrvDataBatteryStateModel::Parse(bb* frame) {
    battery = bb_get(frame);
    return true;
}

bool OrvDataSwingAbort::Parse(bb* frame) {
    step = bb_get(frame);
    return true;
}

bool OrvDataFWVersionModel::Parse(bb* frame) {
    major = bb_get(frame);
    minor = bb_get(frame);
    patch = bb_get(frame);
    std::snprintf(version, sizeof version, "%c.%c.%c", major, minor, patch);
    return true;
}

bool OrvDataSwingInfoModel::Parse(bb* frame) {
    DistanceUnit = bb_get(frame);
    SwingDistance = Scaled(bb_get_short(frame), 100.0);
    SpeedUnit = bb_get(frame);
    HeadSpeed = Scaled(bb_get_short(frame), 100.0);
    Tempo = Scaled(bb_get(frame), 10.0);
    ClubPathDir = bb_get(frame);
    ClubPath = Scaled(bb_get_short(frame), 10.0);
    FaceAngleDir = bb_get(frame);
    FaceAngle = Scaled(bb_get_short(frame), 10.0);
    SwingType = bb_get(frame);
    SensorSpeed = Scaled(bb_get_short(frame), 100.0);
    ClubReleaseRatio = bb_get(frame);
    return true;
}

void OrvDataSwingInfoModel::ToLog() const {
    if (!IsShowLog()) {
        return;
    }
    PrintLog("OrvDataSwingInfoModel::ToLog", __LINE__,
             "\n============= SwingInfo =============\nDistance unit: %d\nSwing distance: "
             "%f\nSpeedUnit: %d\nHeadSpeed: %f\nTempo: %f\nClubPathDir: %d\nClubPath: "
             "%f\nFaceAngleDir: %d\nFaceAngle: %f\nSwingType: %d\nSensorSpeed: "
             "%f\nClubReleaseRatio: %d\n=====================================\n\n",
             DistanceUnit, static_cast<double>(SwingDistance), SpeedUnit,
             static_cast<double>(HeadSpeed), static_cast<double>(Tempo), ClubPathDir,
             static_cast<double>(ClubPath), FaceAngleDir, static_cast<double>(FaceAngle), SwingType,
             static_cast<double>(SensorSpeed), ClubReleaseRatio);
}

bool OrvDataRawModel::Parse(bb* frame) {
    ReadSamples(frame, ax, ay, az, gx, gy, gz);
    interval = bb_get(frame);
    index = bb_get_short(frame);
    last = bb_get(frame);
    return true;
}

bool OrvDataSimRawModel::Parse(bb* frame) {
    ReadSamples(frame, ax, ay, az, gx, gy, gz);
    step = bb_get(frame);
    bb_skip(frame, 3);
    return true;
}

bool OrvDataImpactRawModel::Parse(bb* frame) {
    for (auto& value : values) {
        value = bb_get_short(frame);
    }
    extra = bb_get(frame);
    bb_skip(frame, 3);
    return true;
}

bool OrvDataSimResultModel::Parse(bb* frame) {
    for (auto& value : values) {
        value = bb_get(frame);
    }
    bb_skip(frame, 11);
    return true;
}

bool OrvDataLRSig::Parse(bb* frame) {
    side = bb_get(frame);
    count = bb_get(frame);
    if (count == 0) {
        count = 1;
    }
    return true;
}

int OrvDataLRSig::GetCount() const {
    return side == 1 ? -static_cast<int>(count) : count;
}
