// Frames the sensor sends (code, length, payload, XOR checksum), built the
// way the firmware lays them out.
#pragma once

#include <cstdint>
#include <vector>

using SensorFrame = std::vector<uint8_t>;

// One measured swing, in the units the sensor reports (angles in degrees,
// signed here; the frame carries the magnitude and a direction code).
struct SwingValues {
    double headSpeed = 0;
    double clubPath = 0;
    double faceAngle = 0;
    double tempo = 0;
    double distance = 0;
    double sensorSpeed = 0;
    uint8_t distanceUnit = 1;
    uint8_t speedUnit = 1;
    uint8_t swingType = 1;
    uint8_t releaseRatio = 0;
};

// One six-axis motion sample.
struct MotionSample {
    int16_t ax = 0, ay = 0, az = 0, gx = 0, gy = 0, gz = 0;
};

// Direction codes of path and face: 5 turns the magnitude negative.
constexpr uint8_t kDirectionPositive = 4;
constexpr uint8_t kDirectionNegative = 5;

SensorFrame MakeSensorFrame(uint8_t code, const std::vector<uint8_t>& payload);
SensorFrame EchoFrame(uint8_t event, uint8_t result);
SensorFrame ClubInfoFrame(uint8_t club);
SensorFrame BatteryFrame(uint8_t percent);
SensorFrame FirmwareFrame(char major, char minor, char patch);
SensorFrame SwingInfoFrame(const SwingValues& swing);
SensorFrame SimRawFrame(const MotionSample& motion, uint8_t step);
SensorFrame SwingAbortFrame(uint8_t step);
SensorFrame RawBlockFrame(const MotionSample& motion, uint8_t interval, uint16_t index, bool last);
SensorFrame LrSignalFrame(uint8_t side, uint8_t count);
