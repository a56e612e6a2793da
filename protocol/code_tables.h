// Names and descriptions of every code of the sensor protocol: commands sent,
// data types received, result codes and clubs. Read-only after start-up.
#pragma once

#include <cstdint>
#include <map>
#include <string>

struct __code_tag {
    uint8_t code;
    const char* name;
    const char* description;
};

using OrvCodeTable = std::map<uint8_t, __code_tag>;

extern const OrvCodeTable gOrvCommand;
extern const OrvCodeTable gOrvData;
extern const OrvCodeTable gOrvResultCodeDef;
extern const OrvCodeTable gOrvClubCodeDef;

// Command codes (first byte of a frame to the sensor).
enum : uint8_t {
    ORV_COMMAND_ECHO = 0x00,
    ORV_COMMAND_CLUB_INFO = 0x02,
    ORV_COMMAND_DFU = 0x03,
    ORV_COMMAND_RESET = 0x09,
    ORV_COMMAND_STATE_SYNC = 0x0A,
    ORV_COMMAND_CLUB_INFO_REQ = 0x0C,
    ORV_COMMAND_TIME_SYNC_REQ = 0x0D,
    ORV_COMMAND_RESULT_DISPLAY_SEQ = 0x0E,
    ORV_COMMAND_FW_VERSION = 0x12,
    ORV_COMMAND_RAW_DATA_REQ = 0x15,
    ORV_COMMAND_SYSTEM_SETTING = 0x17,
    ORV_COMMAND_MANUAL_CLUB_SELECT = 0x18,
    ORV_COMMAND_SIM_RESULT_REQ = 0x19,
    ORV_COMMAND_SENSOR_DATA_REQ = 0x1A,
    ORV_COMMAND_IMPACT_RAW_DATA_REQ = 0x1B,
    ORV_COMMAND_HANDS_REQ = 0x1C,
    ORV_COMMAND_BATTERY_REQ = 0x1D,
};

// Data-type codes (first byte of a frame from the sensor).
enum : uint8_t {
    ORV_DATA_ECHO = 0x00,
    ORV_DATA_CLUB_INFO = 0x01,
    ORV_DATA_SWING_INFO = 0x02,
    ORV_DATA_STATE = 0x04,
    ORV_DATA_FW_VERSION = 0x06,
    ORV_DATA_RAW = 0x08,
    ORV_DATA_SIM_RESULT = 0x09,
    ORV_DATA_SIM_RAW = 0x0A,
    ORV_DATA_SWING_ABORT = 0x0B,
    ORV_DATA_IMPACT_RAW = 0x0C,
    ORV_DATA_LR_SIG = 0x0F,
};

// Result codes reported by the sensor (spellings kept from the firmware).
enum : uint8_t {
    ORV_RES_SUCCESS = 0x00,
    ORV_RES_UNKNOWN_PACKET = 0x01,
    ORV_RES_WRONG_CHCECKSUM = 0x03,
    ORV_RES_IMPROPER_STATUS = 0x04,
    ORV_RES_NO_FIRMWARE = 0x05,
    ORV_RES_LOW_BATTERY = 0x06,
    ORV_RES_NOT_SUPPORTED_COMMAND = 0x10,
    ORV_RES_ILLEAGAL_DATA = 0x11,
    ORV_RES_NO_SAVED_INFORMATION = 0x20,
    ORV_RES_FULL_MEMORY = 0x21,
    ORV_RES_ILLEAGAL_MEMORY_READING = 0x30,
    ORV_RES_ILLEAGAL_MEMORY_WRITING = 0x31,
};

// Lookups never insert: an unknown code gives null.
const __code_tag* OrvGetCommandCodeDef(uint8_t code);
const __code_tag* OrvGetDataCodeDef(uint8_t code);
const __code_tag* OrvGetResultCodeDef(uint8_t code);
const __code_tag* OrvGetClubCodeDef(uint8_t code);
// Club whose symbolic name equals `name` ignoring ASCII case; descriptions never match.
const __code_tag* OrvGetClubCodeDef(const char* name);

// Equality with ASCII letters folded to one case and nothing else normalised.
bool SafeStringiCompare(const std::string& a, const std::string& b);
