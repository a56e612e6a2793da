#include "protocol/byte_buffer.h"

#include <cstring>
#include <new>

namespace {

bool InRange(const bb* buffer, int64_t index) {
    return index >= 0 && index < static_cast<int64_t>(buffer->size);
}

void StoreAt(bb* buffer, int64_t index, uint8_t value) {
    if (InRange(buffer, index)) {
        buffer->data[index] = value;
    }
}

}  // namespace

bb* bb_new(uint32_t size) {
    auto* buffer = new bb{0, 0, size, nullptr};
    buffer->data = new uint8_t[size == 0 ? 1 : size]();
    return buffer;
}

bb* bb_new_copy(const uint8_t* bytes, uint32_t size) {
    bb* buffer = bb_new(size);
    if (bytes != nullptr && size > 0) {
        std::memcpy(buffer->data, bytes, size);
    }
    return buffer;
}

void bb_free(bb** buffer) {
    if (buffer == nullptr || *buffer == nullptr) {
        return;
    }
    if ((*buffer)->borrowed == 0) {
        delete[](*buffer)->data;
    }
    delete *buffer;
    *buffer = nullptr;
}

void bb_put(bb* buffer, uint8_t value) {
    if (InRange(buffer, buffer->pos)) {
        buffer->data[buffer->pos] = value;
        buffer->pos += 1;
    }
}

void bb_put_short(bb* buffer, uint16_t value) {
    StoreAt(buffer, buffer->pos, static_cast<uint8_t>(value >> 8));
    StoreAt(buffer, int64_t{buffer->pos} + 1, static_cast<uint8_t>(value));
    buffer->pos += 2;
}

void bb_put_int(bb* buffer, uint32_t value) {
    for (int shift = 24, i = 0; shift >= 0; shift -= 8, ++i) {
        StoreAt(buffer, int64_t{buffer->pos} + i, static_cast<uint8_t>(value >> shift));
    }
    buffer->pos += 4;
}

uint8_t bb_get_at(const bb* buffer, int32_t index) {
    return InRange(buffer, index) ? buffer->data[index] : 0;
}

uint8_t bb_get(bb* buffer) {
    const uint8_t value = bb_get_at(buffer, buffer->pos);
    buffer->pos += 1;
    return value;
}

uint16_t bb_get_short(bb* buffer) {
    const uint16_t value = static_cast<uint16_t>(
        bb_get_at(buffer, buffer->pos) * 256 +
        (InRange(buffer, int64_t{buffer->pos} + 1) ? buffer->data[buffer->pos + 1] : 0));
    buffer->pos += 2;
    return value;
}

void bb_skip(bb* buffer, int32_t count) {
    buffer->pos += count;
}

std::string bytesToHexString(const uint8_t* data, size_t size) {
    static constexpr char kDigits[] = "0123456789ABCDEF";
    std::string text;
    if (data == nullptr) {
        return text;
    }
    text.reserve(size * 3);
    for (size_t i = 0; i < size; ++i) {
        if (i > 0) {
            text.push_back(' ');
        }
        text.push_back(kDigits[data[i] >> 4]);
        text.push_back(kDigits[data[i] & 0x0F]);
    }
    return text;
}
