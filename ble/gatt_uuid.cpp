#include "ble/gatt_uuid.h"

#include <cstdio>

namespace {

// 0000xxxx-0000-1000-8000-00805f9b34fb
constexpr GattUuid::Bytes kBluetoothBase = {0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x10, 0x00,
                                            0x80, 0x00, 0x00, 0x80, 0x5f, 0x9b, 0x34, 0xfb};

int HexDigit(char c) {
    if (c >= '0' && c <= '9') {
        return c - '0';
    }
    if (c >= 'a' && c <= 'f') {
        return c - 'a' + 10;
    }
    if (c >= 'A' && c <= 'F') {
        return c - 'A' + 10;
    }
    return -1;
}

// Exactly `count` hex digits into big-endian bytes appended to `out`.
bool ReadHex(std::string_view text, size_t count, uint8_t* out) {
    if (text.size() != count) {
        return false;
    }
    for (size_t i = 0; i < count; i += 2) {
        const int high = HexDigit(text[i]);
        const int low = HexDigit(text[i + 1]);
        if (high < 0 || low < 0) {
            return false;
        }
        out[i / 2] = static_cast<uint8_t>(high * 16 + low);
    }
    return true;
}

bool IsOnBase(const GattUuid::Bytes& bytes) {
    for (size_t i = 4; i < bytes.size(); ++i) {
        if (bytes[i] != kBluetoothBase[i]) {
            return false;
        }
    }
    return bytes[0] == 0 && bytes[1] == 0;
}

}  // namespace

GattUuid GattUuid::FromShort(uint16_t id) {
    GattUuid uuid;
    uuid.bytes_ = kBluetoothBase;
    uuid.bytes_[2] = static_cast<uint8_t>(id >> 8);
    uuid.bytes_[3] = static_cast<uint8_t>(id & 0xFF);
    uuid.isShort_ = true;
    return uuid;
}

GattUuid GattUuid::FromBytes(const Bytes& bytes) {
    if (IsOnBase(bytes)) {
        return FromShort(static_cast<uint16_t>(bytes[2] << 8 | bytes[3]));
    }
    GattUuid uuid;
    uuid.bytes_ = bytes;
    return uuid;
}

GattUuid GattUuid::Parse(std::string_view text) {
    GattUuid invalid;
    invalid.valid_ = false;
    if (text.size() >= 2 && text.front() == '{' && text.back() == '}') {
        text = text.substr(1, text.size() - 2);
    }
    if (text.size() == 6 && (text.starts_with("0x") || text.starts_with("0X"))) {
        text.remove_prefix(2);
    }
    if (text.size() == 4) {
        uint8_t id[2];
        return ReadHex(text, 4, id) ? FromShort(static_cast<uint16_t>(id[0] << 8 | id[1]))
                                    : invalid;
    }
    // 8-4-4-4-12
    if (text.size() != 36 || text[8] != '-' || text[13] != '-' || text[18] != '-' ||
        text[23] != '-') {
        return invalid;
    }
    Bytes bytes{};
    if (!ReadHex(text.substr(0, 8), 8, &bytes[0]) || !ReadHex(text.substr(9, 4), 4, &bytes[4]) ||
        !ReadHex(text.substr(14, 4), 4, &bytes[6]) || !ReadHex(text.substr(19, 4), 4, &bytes[8]) ||
        !ReadHex(text.substr(24, 12), 12, &bytes[10])) {
        return invalid;
    }
    return FromBytes(bytes);
}

uint16_t GattUuid::ShortId() const {
    return isShort_ ? static_cast<uint16_t>(bytes_[2] << 8 | bytes_[3]) : 0;
}

std::string GattUuid::ToString() const {
    char text[37];
    std::snprintf(text, sizeof text,
                  "%02x%02x%02x%02x-%02x%02x-%02x%02x-%02x%02x-%02x%02x%02x%02x%02x%02x", bytes_[0],
                  bytes_[1], bytes_[2], bytes_[3], bytes_[4], bytes_[5], bytes_[6], bytes_[7],
                  bytes_[8], bytes_[9], bytes_[10], bytes_[11], bytes_[12], bytes_[13], bytes_[14],
                  bytes_[15]);
    return text;
}
