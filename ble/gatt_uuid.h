// A GATT identifier as the wrapper compares it: a 128-bit value, flagged short
// when it is one of the 16-bit identifiers assigned on the Bluetooth base.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

class GattUuid {
public:
    using Bytes = std::array<uint8_t, 16>;  // big-endian, as written in text

    GattUuid() = default;  // the nil identifier, long

    static GattUuid FromShort(uint16_t id);
    static GattUuid FromBytes(const Bytes& bytes);
    // "{6e400001-b5a3-f393-e0a9-e50e24dcca9e}", the same without braces, or
    // "2902" / "0x2902". Text on the Bluetooth base comes back short. Text that
    // is none of these gives the nil identifier with IsValid() false.
    static GattUuid Parse(std::string_view text);

    bool IsValid() const { return valid_; }
    bool IsShort() const { return isShort_; }
    uint16_t ShortId() const;
    const Bytes& bytes() const { return bytes_; }
    // Lowercase "6e400001-b5a3-f393-e0a9-e50e24dcca9e" (the base form for short ones).
    std::string ToString() const;

    // A short identifier never equals a long one, even on the base.
    bool operator==(const GattUuid& other) const = default;

private:
    Bytes bytes_{};
    bool isShort_ = false;
    bool valid_ = true;
};
