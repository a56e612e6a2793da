#include "protocol/command_models.h"

#include <cmath>

namespace {

// Truncation toward zero into 32 bits, defined for every input (out-of-range
// and NaN factors give 0 instead of undefined behaviour).
uint32_t TruncateToUint32(double value) {
    if (!std::isfinite(value) || value <= -9.2e18 || value >= 9.2e18) {
        return 0;
    }
    return static_cast<uint32_t>(static_cast<int64_t>(value));
}

}  // namespace

OrvCmdBaseModel::~OrvCmdBaseModel() {
    bb_free(&packet);
}

bb* OrvCmdBaseModel::MakeSendPacket() {
    bb_free(&packet);
    const int length = GetLength();
    bb* buffer = bb_new(static_cast<uint32_t>(length + 3));
    bb_put(buffer, code);
    bb_put(buffer, static_cast<uint8_t>(length));
    MakePacket(buffer);
    // The checksum byte is still zero, so XOR over the whole buffer is the
    // XOR of everything before it.
    uint8_t checksum = 0;
    for (uint32_t i = 0; i < buffer->size; ++i) {
        checksum ^= buffer->data[i];
    }
    bb_put(buffer, checksum);
    packet = buffer;
    return packet;
}

void OrvCmdHandsReqModel::MakePacket(bb* buffer) {
    bb_put(buffer, static_cast<uint8_t>(hand));
}

void OrvCmdStateSyncModel::MakePacket(bb* buffer) {
    bb_put(buffer, state1);
    bb_put(buffer, state2);
    bb_put(buffer, state3);
}

void OrvCmdTimeSyncReqModel::MakePacket(bb* buffer) {
    bb_put(buffer, hour);
    bb_put(buffer, minute);
    bb_put(buffer, second);
    bb_put(buffer, flag);
}

void OrvCmdSystemSettingModel::MakePacket(bb* buffer) {
    bb_put(buffer, setting1);
    bb_put(buffer, setting2);
    bb_put(buffer, setting3);
    bb_put(buffer, setting4);
    for (int i = 0; i < 4; ++i) {
        bb_put_short(buffer, 0);
    }
    bb_put_int(buffer, 0);
}

void OrvCmdManualClubSelectModel::MakePacket(bb* buffer) {
    bb_put(buffer, static_cast<uint8_t>(club));
    bb_put_short(buffer, static_cast<uint16_t>(value1));
    bb_put_short(buffer, static_cast<uint16_t>(value2));
    // Truncated, not rounded: 1.15f * 10 gives 11. Large factors wrap modulo 256.
    const uint32_t scaled = TruncateToUint32(static_cast<double>(factor) * 10.0);
    bb_put(buffer, static_cast<uint8_t>(scaled & 0xFF));
    bb_put_short(buffer, static_cast<uint16_t>(value3));
    bb_put_short(buffer, static_cast<uint16_t>(value4));
}
