#include "protocol/code_tables.h"

namespace {

OrvCodeTable MakeTable(std::initializer_list<__code_tag> entries) {
    OrvCodeTable table;
    for (const auto& entry : entries) {
        table.emplace(entry.code, entry);
    }
    return table;
}

const __code_tag* Find(const OrvCodeTable& table, uint8_t code) {
    const auto it = table.find(code);
    return it == table.end() ? nullptr : &it->second;
}

char FoldAscii(char c) {
    return (c >= 'A' && c <= 'Z') ? static_cast<char>(c - 'A' + 'a') : c;
}

}  // namespace

// The descriptions are the firmware's own texts: "Reset device(4)." on code 9
// and the missing full stops are deliberate.
const OrvCodeTable gOrvCommand = MakeTable({
    {0x00, "ORV_COMMAND_ECHO", "Echo(0)."},
    {0x02, "ORV_COMMAND_CLUB_INFO", "Set Club Info(2)."},
    {0x03, "ORV_COMMAND_DFU", "DFU Mode(3)."},
    {0x09, "ORV_COMMAND_RESET", "Reset device(4)."},
    {0x0A, "ORV_COMMAND_STATE_SYNC", "State sync(10)."},
    {0x0C, "ORV_COMMAND_CLUB_INFO_REQ", "Club info request(12)."},
    {0x0D, "ORV_COMMAND_TIME_SYNC_REQ", "Time sync request(13)."},
    {0x0E, "ORV_COMMAND_RESULT_DISPLAY_SEQ", "Device display type(14)."},
    {0x12, "ORV_COMMAND_FW_VERSION", "Firmware version(18)."},
    {0x15, "ORV_COMMAND_RAW_DATA_REQ", "Raw data request(21)."},
    {0x17, "ORV_COMMAND_SYSTEM_SETTING", "System setting(23)."},
    {0x18, "ORV_COMMAND_MANUAL_CLUB_SELECT", "Manual club select(24)."},
    {0x19, "ORV_COMMAND_SIM_RESULT_REQ", "Simulator result request(25)."},
    {0x1A, "ORV_COMMAND_SENSOR_DATA_REQ", "Sensor data request(26)."},
    {0x1B, "ORV_COMMAND_IMPACT_RAW_DATA_REQ", "Impact raw data request(27)."},
    {0x1C, "ORV_COMMAND_HANDS_REQ", "Handed request(28)."},
    {0x1D, "ORV_COMMAND_BATTERY_REQ", "Battery request(29)."},
});

const OrvCodeTable gOrvData = MakeTable({
    {0x00, "ORV_DATA_ECHO", "Echo(0)."},
    {0x01, "ORV_DATA_CLUB_INFO", "Club info(1)."},
    {0x02, "ORV_DATA_SWING_INFO", "Swing info(2)."},
    {0x04, "ORV_DATA_STATE", "State(4)"},
    {0x06, "ORV_DATA_FW_VERSION", "Firmware version(6)"},
    {0x08, "ORV_DATA_RAW", "Raw data send(8)."},
    {0x09, "ORV_DATA_SIM_RESULT", "Simulator result(9)."},
    {0x0A, "ORV_DATA_SIM_RAW", "Simulator raw data send(10)."},
    {0x0B, "ORV_DATA_SWING_ABORT", "Swing abort(11)."},
    {0x0C, "ORV_DATA_IMPACT_RAW", "Impact raw data send(12)."},
    {0x0F, "ORV_DATA_LR_SIG", "Left and right sig(15)."},
});

const OrvCodeTable gOrvResultCodeDef = MakeTable({
    {0x00, "ORV_RES_SUCCESS", "Success"},
    {0x01, "ORV_RES_UNKNOWN_PACKET", "Unknown packet"},
    {0x03, "ORV_RES_WRONG_CHCECKSUM", "Wrong checksum"},
    {0x04, "ORV_RES_IMPROPER_STATUS", "Cannot execute command"},
    {0x05, "ORV_RES_NO_FIRMWARE", "No firmware installed"},
    {0x06, "ORV_RES_LOW_BATTERY", "Low battery"},
    {0x10, "ORV_RES_NOT_SUPPORTED_COMMAND", "Unsupport command"},
    {0x11, "ORV_RES_ILLEAGAL_DATA", "Invalid parameter"},
    {0x20, "ORV_RES_NO_SAVED_INFORMATION", "No saved info"},
    {0x21, "ORV_RES_FULL_MEMORY", "Short memory"},
    {0x30, "ORV_RES_ILLEAGAL_MEMORY_READING", "fail to read"},
    {0x31, "ORV_RES_ILLEAGAL_MEMORY_WRITING", "fail to write"},
});

// Codes 16 and 17 came after the putter and are out of bag order.
const OrvCodeTable gOrvClubCodeDef = MakeTable({
    {0x01, "Driver", "Driver"},
    {0x02, "3Wood", "3 Wood"},
    {0x03, "5Wood", "5 Wood"},
    {0x04, "7Wood", "7 Wood"},
    {0x05, "4Iron", "4 Iron"},
    {0x06, "5Iron", "5 Iron"},
    {0x07, "6Iron", "6 Iron"},
    {0x08, "7Iron", "7 Iron"},
    {0x09, "8Iron", "8 Iron"},
    {0x0A, "9Iron", "9 Iron"},
    {0x0B, "PitchingWedge", "Pitching Wedge"},
    {0x0C, "GapWedge", "Gap Wedge"},
    {0x0D, "SandWedge", "Sand Wedge"},
    {0x0E, "LobWedge", "Lob Wedge"},
    {0x0F, "Putter", "Putter"},
    {0x10, "3Iron", "3 Iron"},
    {0x11, "4Hybrid", "4 Hybrid"},
});

const __code_tag* OrvGetCommandCodeDef(uint8_t code) {
    return Find(gOrvCommand, code);
}
const __code_tag* OrvGetDataCodeDef(uint8_t code) {
    return Find(gOrvData, code);
}
const __code_tag* OrvGetResultCodeDef(uint8_t code) {
    return Find(gOrvResultCodeDef, code);
}
const __code_tag* OrvGetClubCodeDef(uint8_t code) {
    return Find(gOrvClubCodeDef, code);
}

const __code_tag* OrvGetClubCodeDef(const char* name) {
    if (name == nullptr) {
        return nullptr;
    }
    const std::string wanted(name);
    for (const auto& [code, entry] : gOrvClubCodeDef) {
        if (SafeStringiCompare(entry.name, wanted)) {
            return &entry;
        }
    }
    return nullptr;
}

bool SafeStringiCompare(const std::string& a, const std::string& b) {
    if (a.size() != b.size()) {
        return false;
    }
    for (size_t i = 0; i < a.size(); ++i) {
        if (FoldAscii(a[i]) != FoldAscii(b[i])) {
            return false;
        }
    }
    return true;
}
