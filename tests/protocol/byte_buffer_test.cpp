#include "protocol/byte_buffer.h"

#include <gtest/gtest.h>

namespace {

TEST(ByteBuffer, BigEndianRoundTripAndCursor) {
    bb* buffer = bb_new(7);
    EXPECT_EQ(buffer->pos, 0);
    EXPECT_EQ(buffer->borrowed, 0);
    bb_put(buffer, 0xAB);
    bb_put_short(buffer, 0x1234);
    bb_put_int(buffer, 0xDEADBEEF);
    EXPECT_EQ(buffer->pos, 7);
    const uint8_t expected[] = {0xAB, 0x12, 0x34, 0xDE, 0xAD, 0xBE, 0xEF};
    EXPECT_EQ(0, memcmp(buffer->data, expected, sizeof expected));

    buffer->pos = 0;
    EXPECT_EQ(bb_get(buffer), 0xAB);
    EXPECT_EQ(bb_get_short(buffer), 0x1234);
    bb_skip(buffer, 2);
    EXPECT_EQ(bb_get_at(buffer, 6), 0xEF);
    EXPECT_EQ(buffer->pos, 5);
    EXPECT_EQ(bb_get_short(buffer), 0xBEEF);
    bb_free(&buffer);
    EXPECT_EQ(buffer, nullptr);
    bb_free(&buffer);  // freeing null is harmless
}

TEST(ByteBuffer, OutOfRangeReadsGiveZeroAndWritesStopAtSize) {
    const uint8_t bytes[] = {0x7F, 0x01, 0x02};
    bb* buffer = bb_new_copy(bytes, sizeof bytes);
    EXPECT_EQ(buffer->data[0], 0x7F);
    bb_skip(buffer, 2);
    // A short straddling the end keeps its in-range high byte.
    EXPECT_EQ(bb_get_short(buffer), 0x0200);
    EXPECT_EQ(bb_get(buffer), 0);
    EXPECT_EQ(bb_get_short(buffer), 0);
    EXPECT_EQ(bb_get_at(buffer, 3), 0);
    EXPECT_EQ(bb_get_at(buffer, -1), 0);
    EXPECT_EQ(buffer->pos, 7);
    bb_free(&buffer);

    bb* small = bb_new(3);
    bb_put_int(small, 0x01020304);  // only three bytes fit
    bb_put(small, 0x55);            // full: ignored, cursor unchanged
    EXPECT_EQ(small->pos, 4);
    EXPECT_EQ(small->data[0], 0x01);
    EXPECT_EQ(small->data[2], 0x03);
    bb_free(&small);

    bb* empty = bb_new_copy(nullptr, 0);
    EXPECT_EQ(empty->size, 0u);
    EXPECT_EQ(bb_get(empty), 0);
    bb_put_short(empty, 0xFFFF);
    bb_free(&empty);
}

TEST(ByteBuffer, HexText) {
    const uint8_t bytes[] = {0x0A, 0x03, 0xFF};
    EXPECT_EQ(bytesToHexString(bytes, 3), "0A 03 FF");
    EXPECT_EQ(bytesToHexString(bytes, 0), "");
    EXPECT_EQ(bytesToHexString(nullptr, 5), "");
}

}  // namespace
