// One class per command sent to the sensor. `MakeSendPacket` builds the whole
// frame: code, payload length, payload, XOR checksum over all bytes before it.
#pragma once

#include <cstdint>

#include "protocol/byte_buffer.h"
#include "protocol/code_tables.h"

class OrvCmdBaseModel {
public:
    virtual ~OrvCmdBaseModel();
    OrvCmdBaseModel(const OrvCmdBaseModel&) = delete;
    OrvCmdBaseModel& operator=(const OrvCmdBaseModel&) = delete;

    // The frame stays owned by the model until the next call or its end;
    // callers copy the bytes out.
    bb* MakeSendPacket();

    uint8_t code;
    bb* packet = nullptr;

protected:
    explicit OrvCmdBaseModel(uint8_t commandCode) : code(commandCode) {}

    virtual void MakePacket(bb* buffer) = 0;
    virtual int GetLength() = 0;
};

// A payload-free frame for any command code.
class OrvCmdModel : public OrvCmdBaseModel {
public:
    explicit OrvCmdModel(uint8_t commandCode) : OrvCmdBaseModel(commandCode) {}

protected:
    void MakePacket(bb* /*buffer*/) override {}
    int GetLength() override { return 0; }
};

class OrvCmdClubInfoReqModel final : public OrvCmdModel {
public:
    OrvCmdClubInfoReqModel() : OrvCmdModel(ORV_COMMAND_CLUB_INFO_REQ) {}
};

class OrvCmdFWVersionReqModel final : public OrvCmdModel {
public:
    OrvCmdFWVersionReqModel() : OrvCmdModel(ORV_COMMAND_FW_VERSION) {}
};

class OrvCmdRawDataReqModel final : public OrvCmdModel {
public:
    OrvCmdRawDataReqModel() : OrvCmdModel(ORV_COMMAND_RAW_DATA_REQ) {}
};

class OrvCmdBatteryStateReqModel final : public OrvCmdModel {
public:
    OrvCmdBatteryStateReqModel() : OrvCmdModel(ORV_COMMAND_BATTERY_REQ) {}
};

class OrvCmdHandsReqModel final : public OrvCmdBaseModel {
public:
    explicit OrvCmdHandsReqModel(int handValue)
        : OrvCmdBaseModel(ORV_COMMAND_HANDS_REQ), hand(handValue) {}

    int hand;

protected:
    void MakePacket(bb* buffer) override;
    int GetLength() override { return 1; }
};

class OrvCmdStateSyncModel final : public OrvCmdBaseModel {
public:
    OrvCmdStateSyncModel(uint8_t s1, uint8_t s2, uint8_t s3)
        : OrvCmdBaseModel(ORV_COMMAND_STATE_SYNC), state1(s1), state2(s2), state3(s3) {}

    uint8_t state1, state2, state3;

protected:
    void MakePacket(bb* buffer) override;
    int GetLength() override { return 3; }
};

class OrvCmdTimeSyncReqModel final : public OrvCmdBaseModel {
public:
    OrvCmdTimeSyncReqModel(uint8_t h, uint8_t m, uint8_t s, uint8_t f)
        : OrvCmdBaseModel(ORV_COMMAND_TIME_SYNC_REQ), hour(h), minute(m), second(s), flag(f) {}

    uint8_t hour, minute, second, flag;

protected:
    void MakePacket(bb* buffer) override;
    int GetLength() override { return 4; }
};

class OrvCmdSystemSettingModel final : public OrvCmdBaseModel {
public:
    OrvCmdSystemSettingModel(uint8_t s1, uint8_t s2, uint8_t s3, uint8_t s4)
        : OrvCmdBaseModel(ORV_COMMAND_SYSTEM_SETTING),
          setting1(s1),
          setting2(s2),
          setting3(s3),
          setting4(s4) {}

    uint8_t setting1, setting2, setting3, setting4;

protected:
    void MakePacket(bb* buffer) override;
    int GetLength() override { return 16; }
};

// Payload order (club, value1, value2, factor, value3, value4) differs from the
// constructor's on purpose: it is what the firmware reads.
class OrvCmdManualClubSelectModel final : public OrvCmdBaseModel {
public:
    OrvCmdManualClubSelectModel(int clubCode, int16_t v1, int16_t v2, int16_t v3, int16_t v4,
                                float factorValue)
        : OrvCmdBaseModel(ORV_COMMAND_MANUAL_CLUB_SELECT),
          club(clubCode),
          value1(v1),
          value2(v2),
          value3(v3),
          value4(v4),
          factor(factorValue) {}

    int club;
    int16_t value1, value2, value3, value4;
    float factor;

protected:
    void MakePacket(bb* buffer) override;
    int GetLength() override { return 10; }
};
