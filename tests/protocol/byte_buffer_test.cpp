#include "protocol/byte_buffer.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

// The frames and records show the in-range writes and reads; these are the
// edges they never reach.
TEST(ByteBuffer, OutOfRangeReadsGiveZeroWritesStopAtSizeAndTheHexText) {
    const uint8_t bytes[] = {0x7F, 0x01, 0x02};
    bb* buffer = bb_new_copy(bytes, sizeof bytes);
    bb_skip(buffer, 2);
    EXPECT_EQ(bb_get_short(buffer), 0x0200);  // keeps its in-range high byte
    EXPECT_EQ(bb_get(buffer), 0);
    EXPECT_EQ(bb_get_at(buffer, -1), 0);
    EXPECT_EQ(buffer->pos, 5);
    bb_free(&buffer);
    EXPECT_EQ(buffer, nullptr);
    bb_free(&buffer);  // freeing null is harmless

    bb* small = bb_new(3);
    bb_put_int(small, 0x01020304);  // only three bytes fit
    bb_put(small, 0x55);            // full: ignored, cursor unchanged
    EXPECT_EQ(small->pos, 4);
    EXPECT_EQ(std::vector<uint8_t>(small->data, small->data + 3),
              (std::vector<uint8_t>{0x01, 0x02, 0x03}));
    bb_free(&small);

    EXPECT_EQ(bytesToHexString(bytes, 3), "7F 01 02");
    EXPECT_EQ(bytesToHexString(nullptr, 5), "");
}

}  // namespace
