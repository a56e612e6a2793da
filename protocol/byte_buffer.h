// `bb`: the byte buffer through which every sensor frame is built, queued and
// read. Big-endian accessors. Reads at or past the end yield 0 and writes past
// `size` are dropped (the cursor still advances), so a short or empty frame
// parses into zeros and never touches foreign memory.
#pragma once

#include <cstdint>
#include <string>

struct bb {
    int32_t pos;
    uint8_t borrowed;  // 0: `data` belongs to the buffer
    uint32_t size;
    uint8_t* data;
};

bb* bb_new(uint32_t size);
bb* bb_new_copy(const uint8_t* bytes, uint32_t size);
void bb_free(bb** buffer);

void bb_put(bb* buffer, uint8_t value);
void bb_put_short(bb* buffer, uint16_t value);
void bb_put_int(bb* buffer, uint32_t value);

uint8_t bb_get(bb* buffer);
uint16_t bb_get_short(bb* buffer);
uint8_t bb_get_at(const bb* buffer, int32_t index);
void bb_skip(bb* buffer, int32_t count);

// "0A 03 02" for packet dumps.
std::string bytesToHexString(const uint8_t* data, size_t size);
