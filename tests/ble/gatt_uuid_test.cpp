#include "ble/gatt_uuid.h"

#include <gtest/gtest.h>

namespace {

TEST(GattUuid, ParsesBracedAndPlainTextAlike) {
    const GattUuid braced = GattUuid::Parse("{6e400001-b5a3-f393-e0a9-e50e24dcca9e}");
    const GattUuid plain = GattUuid::Parse("6E400001-B5A3-F393-E0A9-E50E24DCCA9E");
    EXPECT_TRUE(braced.IsValid());
    EXPECT_FALSE(braced.IsShort());
    EXPECT_EQ(braced, plain);
    EXPECT_EQ(braced.ToString(), "6e400001-b5a3-f393-e0a9-e50e24dcca9e");
    EXPECT_EQ(braced.bytes()[0], 0x6e);
    EXPECT_EQ(braced.bytes()[15], 0x9e);
    EXPECT_NE(braced, GattUuid::Parse("{6e400002-b5a3-f393-e0a9-e50e24dcca9e}"));
}

TEST(GattUuid, IdentifiersOnTheBluetoothBaseAreShort) {
    const GattUuid full = GattUuid::Parse("00002a00-0000-1000-8000-00805f9b34fb");
    EXPECT_TRUE(full.IsShort());
    EXPECT_EQ(full.ShortId(), 0x2A00);
    EXPECT_EQ(full, GattUuid::FromShort(0x2A00));
    EXPECT_EQ(GattUuid::Parse("2a00"), full);
    EXPECT_EQ(GattUuid::Parse("0x2A00"), full);
    EXPECT_EQ(full.ToString(), "00002a00-0000-1000-8000-00805f9b34fb");
    // Same first four bytes, other base: long.
    EXPECT_FALSE(GattUuid::Parse("00002a00-0000-1000-8000-00805f9b34fc").IsShort());
}

TEST(GattUuid, MalformedTextIsInvalid) {
    for (const char* text : {"", "xyz", "2a0", "{6e400001-b5a3-f393-e0a9-e50e24dcca9}",
                             "6e400001xb5a3-f393-e0a9-e50e24dcca9e",
                             "6e400001-b5a3-f393-e0a9-e50e24dcca9g", "{6e400001}"}) {
        SCOPED_TRACE(text);
        EXPECT_FALSE(GattUuid::Parse(text).IsValid());
    }
}

}  // namespace
