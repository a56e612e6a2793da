#include "protocol/command_models.h"

#include <gtest/gtest.h>

#include <memory>
#include <vector>

namespace {

using Bytes = std::vector<uint8_t>;

Bytes FrameOf(OrvCmdBaseModel& model) {
    bb* frame = model.MakeSendPacket();
    return Bytes(frame->data, frame->data + frame->size);
}

TEST(CommandModels, FramesOnTheWire) {
    Bytes setting{0x17, 0x10, 0x00, 0x00, 0x01, 0x01};  // system setting, 16 bytes
    setting.insert(setting.end(), 12, 0x00);
    setting.push_back(0x07);
    const std::pair<std::shared_ptr<OrvCmdBaseModel>, Bytes> cases[] = {
        {std::make_shared<OrvCmdModel>(ORV_COMMAND_ECHO), {0x00, 0x00, 0x00}},
        {std::make_shared<OrvCmdModel>(ORV_COMMAND_RESET), {0x09, 0x00, 0x09}},
        // state sync, 3 payload bytes, states 2 3 0, checksum 0A^03^02^03^00
        {std::make_shared<OrvCmdStateSyncModel>(2, 3, 0), {0x0A, 0x03, 0x02, 0x03, 0x00, 0x08}},
        {std::make_shared<OrvCmdSystemSettingModel>(0, 0, 1, 1), setting},
        // 13:45:59, 1; checksum 0D^04^0D^2D^3B^01
        {std::make_shared<OrvCmdTimeSyncReqModel>(13, 45, 59, 1),
         {0x0D, 0x04, 13, 45, 59, 1, 0x13}},
        {std::make_shared<OrvCmdHandsReqModel>(0x102), {0x1C, 0x01, 0x02, 0x1F}},  // low byte only
        // club 1; -150; 100; factor 16.0 * 10; 1000; 2200
        {std::make_shared<OrvCmdManualClubSelectModel>(1, -150, 100, 1000, 2200, 16.0f),
         {0x18, 0x0A, 0x01, 0xFF, 0x6A, 0x00, 0x64, 0xA0, 0x03, 0xE8, 0x08, 0x98, 0x39}},
        // the driver at sensitivity level 1
        {std::make_shared<OrvCmdManualClubSelectModel>(1, -70, 50, 1000, 2200, 8.0f),
         {0x18, 0x0A, 0x01, 0xFF, 0xBA, 0x00, 0x32, 0x50, 0x03, 0xE8, 0x08, 0x98, 0x4F}},
    };
    for (const auto& [model, expected] : cases) {
        EXPECT_EQ(FrameOf(*model), expected) << int(model->code);
    }
}

TEST(CommandModels, ClubFactorIsTruncatedAndWraps) {
    const std::pair<float, int> cases[] = {
        {1.15f, 11},              // 11.4999... truncated
        {1.3f, 12},               // 12.9999... truncated
        {0.4f, 4},   {25.6f, 0},  // 256 wraps
        {30.0f, 44},
    };
    for (const auto& [factor, expected] : cases) {
        OrvCmdManualClubSelectModel model(1, 0, 0, 0, 0, factor);
        EXPECT_EQ(model.MakeSendPacket()->data[7], expected) << factor;
    }
}

}  // namespace
