#include "protocol/command_models.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

using Bytes = std::vector<uint8_t>;

Bytes FrameOf(OrvCmdBaseModel& model) {
    bb* frame = model.MakeSendPacket();
    return Bytes(frame->data, frame->data + frame->size);
}

TEST(CommandModels, PayloadFreeRequests) {
    OrvCmdRawDataReqModel raw;
    EXPECT_EQ(FrameOf(raw), (Bytes{0x15, 0x00, 0x15}));
    OrvCmdBatteryStateReqModel battery;
    EXPECT_EQ(FrameOf(battery), (Bytes{0x1D, 0x00, 0x1D}));
    OrvCmdFWVersionReqModel version;
    EXPECT_EQ(FrameOf(version), (Bytes{0x12, 0x00, 0x12}));
    OrvCmdClubInfoReqModel club;
    EXPECT_EQ(FrameOf(club), (Bytes{0x0C, 0x00, 0x0C}));
    OrvCmdModel echo(ORV_COMMAND_ECHO);
    EXPECT_EQ(FrameOf(echo), (Bytes{0x00, 0x00, 0x00}));
    OrvCmdModel reset(ORV_COMMAND_RESET);
    EXPECT_EQ(FrameOf(reset), (Bytes{0x09, 0x00, 0x09}));
}

TEST(CommandModels, FramesWithPayload) {
    OrvCmdStateSyncModel sync(2, 3, 0);
    EXPECT_EQ(FrameOf(sync), (Bytes{
                                 0x0A, 0x03,        // state sync, 3 payload bytes
                                 0x02, 0x03, 0x00,  // states
                                 0x08,              // 0A^03^02^03^00
                             }));

    OrvCmdSystemSettingModel setting(0, 0, 1, 1);
    Bytes expected{0x17, 0x10, 0x00, 0x00, 0x01, 0x01};
    expected.insert(expected.end(), 12, 0x00);
    expected.push_back(0x07);
    EXPECT_EQ(FrameOf(setting), expected);

    OrvCmdTimeSyncReqModel time(13, 45, 59, 1);
    EXPECT_EQ(FrameOf(time), (Bytes{0x0D, 0x04, 13, 45, 59, 1,
                                    static_cast<uint8_t>(0x0D ^ 0x04 ^ 13 ^ 45 ^ 59 ^ 1)}));

    OrvCmdHandsReqModel hands(0x102);  // only the low byte travels
    EXPECT_EQ(FrameOf(hands), (Bytes{0x1C, 0x01, 0x02, 0x1F}));
}

TEST(CommandModels, ManualClubSelectLayoutTruncationAndWrap) {
    OrvCmdManualClubSelectModel select(1, -150, 100, 1000, 2200, 16.0f);
    const Bytes frame = FrameOf(select);
    ASSERT_EQ(frame.size(), 13u);
    EXPECT_EQ(Bytes(frame.begin() + 2, frame.end() - 1), (Bytes{
                                                             0x01,        // club
                                                             0xFF, 0x6A,  // value1 -150
                                                             0x00, 0x64,  // value2 100
                                                             0xA0,        // factor 16.0 * 10
                                                             0x03, 0xE8,  // value3 1000
                                                             0x08, 0x98,  // value4 2200
                                                         }));

    // The driver at sensitivity level 1: -70, 50, 8.0, 1000, 2200.
    OrvCmdManualClubSelectModel driver(1, -70, 50, 1000, 2200, 8.0f);
    EXPECT_EQ(FrameOf(driver), (Bytes{0x18, 0x0A, 0x01, 0xFF, 0xBA, 0x00, 0x32, 0x50, 0x03, 0xE8,
                                      0x08, 0x98, 0x4F}));

    auto factorByte = [](float factor) {
        OrvCmdManualClubSelectModel model(1, 0, 0, 0, 0, factor);
        return model.MakeSendPacket()->data[7];
    };
    EXPECT_EQ(factorByte(1.15f), 11);  // 11.4999... truncated
    EXPECT_EQ(factorByte(1.3f), 12);   // 12.9999... truncated
    EXPECT_EQ(factorByte(0.4f), 4);
    EXPECT_EQ(factorByte(25.6f), 0);  // 256 wraps
    EXPECT_EQ(factorByte(30.0f), 44);
}

TEST(CommandModels, RebuildingReplacesTheOwnedFrame) {
    OrvCmdStateSyncModel sync(2, 3, 0);
    bb* first = sync.MakeSendPacket();
    const Bytes firstBytes(first->data, first->data + first->size);
    sync.state3 = 1;
    bb* second = sync.MakeSendPacket();
    EXPECT_EQ(sync.packet, second);
    EXPECT_EQ(second->data[4], 1);
    EXPECT_EQ(second->data[5], firstBytes[5] ^ 1);
    EXPECT_EQ(second->pos, 6);
}

}  // namespace
