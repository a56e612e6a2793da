// The sensor's side of the protocol: one written frame in, the frames the
// firmware sends back out. Not thread-safe; its owner serialises the calls.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "ble/virtual/sensor_frames.h"

class SensorResponder {
public:
    std::vector<SensorFrame> Answer(const uint8_t* data, size_t size);

    void SetFirmware(char major, char minor, char patch);
    void SetClub(uint8_t club) { club_ = club; }
    uint8_t Club() const { return club_; }
    void SetBattery(uint8_t percent) { battery_ = percent; }
    uint8_t Battery() const { return battery_; }
    uint8_t Hands() const { return hands_; }
    // Blocks in one raw-data transfer; the last one carries the end flag.
    void SetRawBlockCount(uint16_t count) { rawBlocks_ = count == 0 ? 1 : count; }

private:
    SensorFrame AnswerManualClubSelect(const uint8_t* data, size_t size);
    SensorFrame NextRawBlock();

    char firmware_[3] = {'1', '2', '0'};
    uint8_t club_ = 1;
    uint8_t battery_ = 87;
    uint8_t hands_ = 1;
    uint16_t rawBlocks_ = 8;
    uint16_t rawIndex_ = 0;
};
