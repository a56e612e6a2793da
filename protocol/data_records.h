// Records of the frames the sensor sends. Each reads its own fixed payload
// layout; the length and checksum bytes are stored, never checked.
#pragma once

#include <cstdint>

#include "protocol/byte_buffer.h"

class OrvDataBaseModel {
public:
    OrvDataBaseModel(const OrvDataBaseModel&) = delete;
    OrvDataBaseModel& operator=(const OrvDataBaseModel&) = delete;

    // Reads type, length, the payload and the checksum; the result is always true.
    bool ParseData();

    bb* buffer;  // not owned
    uint8_t type = 0;
    uint8_t length = 0;
    uint8_t checksum = 0;

protected:
    explicit OrvDataBaseModel(bb* frame) : buffer(frame) {}
    // Records live on the dispatcher's stack; nothing is deleted through the base.
    ~OrvDataBaseModel() { buffer = nullptr; }

    virtual bool Parse(bb* frame) = 0;
};

class OrvDataEchoModel final : public OrvDataBaseModel {
public:
    explicit OrvDataEchoModel(bb* frame) : OrvDataBaseModel(frame) {}
    uint8_t event = 0;
    uint8_t result = 0;

protected:
    bool Parse(bb* frame) override;
};

class OrvDataClubInfoModel final : public OrvDataBaseModel {
public:
    explicit OrvDataClubInfoModel(bb* frame) : OrvDataBaseModel(frame) {}
    int32_t club = 0;

protected:
    bool Parse(bb* frame) override;
};

class OrvDataBatteryStateModel final : public OrvDataBaseModel {
public:
    explicit OrvDataBatteryStateModel(bb* frame) : OrvDataBaseModel(frame) {}
    uint8_t battery = 0;

protected:
    bool Parse(bb* frame) override;
};

class OrvDataSwingAbort final : public OrvDataBaseModel {
public:
    explicit OrvDataSwingAbort(bb* frame) : OrvDataBaseModel(frame) {}
    uint8_t step = 0;

protected:
    bool Parse(bb* frame) override;
};

class OrvDataFWVersionModel final : public OrvDataBaseModel {
public:
    explicit OrvDataFWVersionModel(bb* frame) : OrvDataBaseModel(frame) {}
    uint8_t major = 0;
    uint8_t minor = 0;
    uint8_t patch = 0;
    char version[12] = {};  // "%c.%c.%c", e.g. "1.0.5"

protected:
    bool Parse(bb* frame) override;
};

class OrvDataSwingInfoModel final : public OrvDataBaseModel {
public:
    explicit OrvDataSwingInfoModel(bb* frame) : OrvDataBaseModel(frame) {}

    // Writes the whole record to the debug log when it is on.
    void ToLog() const;

    int32_t DistanceUnit = 0;
    float SwingDistance = 0;  // /100
    int32_t SpeedUnit = 0;
    float HeadSpeed = 0;  // /100
    float Tempo = 0;      // /10
    int32_t ClubPathDir = 0;
    float ClubPath = 0;  // /10, magnitude; sign in ClubPathDir
    int32_t FaceAngleDir = 0;
    float FaceAngle = 0;  // /10, magnitude; sign in FaceAngleDir
    int32_t SwingType = 0;
    float SensorSpeed = 0;  // /100
    uint8_t ClubReleaseRatio = 0;

protected:
    bool Parse(bb* frame) override;
};

class OrvDataRawModel final : public OrvDataBaseModel {
public:
    explicit OrvDataRawModel(bb* frame) : OrvDataBaseModel(frame) {}
    int16_t ax = 0, ay = 0, az = 0, gx = 0, gy = 0, gz = 0;
    uint8_t interval = 0;
    uint16_t index = 0;
    uint8_t last = 0;  // nonzero on the final sample of a transfer

protected:
    bool Parse(bb* frame) override;
};

class OrvDataSimRawModel final : public OrvDataBaseModel {
public:
    explicit OrvDataSimRawModel(bb* frame) : OrvDataBaseModel(frame) {}
    int16_t ax = 0, ay = 0, az = 0, gx = 0, gy = 0, gz = 0;
    uint8_t step = 0;

protected:
    bool Parse(bb* frame) override;
};

class OrvDataImpactRawModel final : public OrvDataBaseModel {
public:
    explicit OrvDataImpactRawModel(bb* frame) : OrvDataBaseModel(frame) {}
    uint16_t values[6] = {};
    uint8_t extra = 0;

protected:
    bool Parse(bb* frame) override;
};

class OrvDataSimResultModel final : public OrvDataBaseModel {
public:
    explicit OrvDataSimResultModel(bb* frame) : OrvDataBaseModel(frame) {}
    uint8_t values[6] = {};

protected:
    bool Parse(bb* frame) override;
};

class OrvDataLRSig final : public OrvDataBaseModel {
public:
    explicit OrvDataLRSig(bb* frame) : OrvDataBaseModel(frame) {}

    // Side 1 counts negative, every other side positive.
    int GetCount() const;

    uint8_t side = 0;
    uint8_t count = 1;  // never 0: a received 0 is stored as 1

protected:
    bool Parse(bb* frame) override;
};
