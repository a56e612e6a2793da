#include "ble/virtual/sensor_responder.h"

#include "protocol/code_tables.h"

namespace {

constexpr size_t kFrameOverhead = 3;  // code, length, checksum
constexpr size_t kManualClubSelectPayload = 10;
constexpr uint8_t kRawIntervalMs = 10;

bool ChecksumMatches(const uint8_t* data, size_t size) {
    uint8_t sum = 0;
    for (size_t i = 0; i + 1 < size; ++i) {
        sum ^= data[i];
    }
    return sum == data[size - 1];
}

}  // namespace

void SensorResponder::SetFirmware(char major, char minor, char patch) {
    firmware_[0] = major;
    firmware_[1] = minor;
    firmware_[2] = patch;
}

std::vector<SensorFrame> SensorResponder::Answer(const uint8_t* data, size_t size) {
    if (size == 0) {
        return {};
    }
    const uint8_t code = data[0];
    if (size < kFrameOverhead) {
        return {EchoFrame(code, ORV_RES_UNKNOWN_PACKET)};
    }
    if (!ChecksumMatches(data, size)) {
        return {EchoFrame(code, ORV_RES_WRONG_CHCECKSUM)};
    }
    if (data[1] != size - kFrameOverhead) {
        return {EchoFrame(code, ORV_RES_ILLEAGAL_DATA)};
    }
    switch (code) {
        case ORV_COMMAND_FW_VERSION:
            return {FirmwareFrame(firmware_[0], firmware_[1], firmware_[2])};
        case ORV_COMMAND_CLUB_INFO_REQ:
            return {ClubInfoFrame(club_)};
        case ORV_COMMAND_BATTERY_REQ:
            return {BatteryFrame(battery_)};
        case ORV_COMMAND_RAW_DATA_REQ:
            return {NextRawBlock()};
        case ORV_COMMAND_MANUAL_CLUB_SELECT:
            return {AnswerManualClubSelect(data, size)};
        case ORV_COMMAND_HANDS_REQ:
            if (data[1] < 1) {
                return {EchoFrame(code, ORV_RES_ILLEAGAL_DATA)};
            }
            hands_ = data[2];
            return {EchoFrame(code, ORV_RES_SUCCESS)};
        case ORV_COMMAND_ECHO:
        case ORV_COMMAND_TIME_SYNC_REQ:
        case ORV_COMMAND_SYSTEM_SETTING:
        case ORV_COMMAND_STATE_SYNC:
            return {EchoFrame(code, ORV_RES_SUCCESS)};
        default:
            break;
    }
    if (OrvGetCommandCodeDef(code) != nullptr) {
        return {EchoFrame(code, ORV_RES_NOT_SUPPORTED_COMMAND)};
    }
    return {EchoFrame(code, ORV_RES_UNKNOWN_PACKET)};
}

SensorFrame SensorResponder::AnswerManualClubSelect(const uint8_t* data, size_t size) {
    const uint8_t club = data[2];
    if (size != kManualClubSelectPayload + kFrameOverhead || OrvGetClubCodeDef(club) == nullptr) {
        return EchoFrame(ORV_COMMAND_MANUAL_CLUB_SELECT, ORV_RES_ILLEAGAL_DATA);
    }
    club_ = club;
    return ClubInfoFrame(club_);
}

SensorFrame SensorResponder::NextRawBlock() {
    // A slow swing arc: enough shape for a plotted file, no physics.
    const auto i = static_cast<int16_t>(rawIndex_);
    const MotionSample motion{static_cast<int16_t>(100 * i),
                              static_cast<int16_t>(-50 * i),
                              980,
                              static_cast<int16_t>(10 * i),
                              0,
                              static_cast<int16_t>(-10 * i)};
    const bool last = rawIndex_ + 1 >= rawBlocks_;
    SensorFrame frame = RawBlockFrame(motion, kRawIntervalMs, rawIndex_, last);
    rawIndex_ = last ? 0 : static_cast<uint16_t>(rawIndex_ + 1);
    return frame;
}
