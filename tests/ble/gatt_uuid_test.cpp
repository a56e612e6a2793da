#include "ble/gatt_uuid.h"

#include <gtest/gtest.h>

namespace {

// Text -> the identifier printed back ("" when invalid), and whether it lies
// on the Bluetooth base.
TEST(GattUuid, ParsesPrintsAndTellsShortIdentifiers) {
    const std::string sensor = "6e400001-b5a3-f393-e0a9-e50e24dcca9e";
    const std::string name = "00002a00-0000-1000-8000-00805f9b34fb";
    const std::string otherBase = "00002a00-0000-1000-8000-00805f9b34fc";
    const struct {
        const char* text;
        std::string printed;
        bool isShort;
    } rows[] = {
        {"{6e400001-b5a3-f393-e0a9-e50e24dcca9e}", sensor, false},
        {"6E400001-B5A3-F393-E0A9-E50E24DCCA9E", sensor, false},
        {"00002A00-0000-1000-8000-00805f9b34fb", name, true},
        {"2a00", name, true},
        {"0x2A00", name, true},
        {"00002a00-0000-1000-8000-00805f9b34fc", otherBase, false},
        {"", "", false},
        {"2a0", "", false},
        {"{6e400001-b5a3-f393-e0a9-e50e24dcca9}", "", false},
        {"6e400001xb5a3-f393-e0a9-e50e24dcca9e", "", false},
        {"6e400001-b5a3-f393-e0a9-e50e24dcca9g", "", false},
        {"{6e400001}", "", false},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.text);
        const GattUuid uuid = GattUuid::Parse(row.text);
        EXPECT_EQ(uuid.IsValid() ? uuid.ToString() : "", row.printed);
        EXPECT_EQ(uuid.IsValid() && uuid.IsShort(), row.isShort);
    }
    const GattUuid braced = GattUuid::Parse(sensor);
    EXPECT_EQ(braced.bytes()[0], 0x6e);
    EXPECT_EQ(braced.bytes()[15], 0x9e);
    EXPECT_NE(braced, GattUuid::Parse("{6e400002-b5a3-f393-e0a9-e50e24dcca9e}"));
    EXPECT_EQ(GattUuid::Parse(name), GattUuid::FromShort(0x2A00));
    EXPECT_EQ(GattUuid::Parse(name).ShortId(), 0x2A00);
}

}  // namespace
