#include "simulator/club_tables.h"

#include <gtest/gtest.h>

#include <thread>
#include <vector>

namespace {

TEST(ClubTables, SensitivityScaleByClubGroupAndLevel) {
    const std::pair<int, float> rows[] = {
        {4, 8}, {17, 8}, {5, 4}, {10, 4}, {13, 2}, {14, 1.3f}, {15, 0.6f},
    };
    for (const auto& [club, scale] : rows) {
        const __swing_sensitivity_st row = OrvGetClubSensitivity(club);
        EXPECT_EQ(row.club, club);
        EXPECT_EQ(row.scale[1], scale) << club;
        EXPECT_EQ(row.scale[2], club == 15 ? 0.4f : 1.15f) << club;
    }
}

TEST(ClubTables, UnknownCodesYieldZeroRowsAndGrowTheTablesFromManyThreads) {
    const size_t values = gClubValueTable.size();
    const size_t sensitivities = gClubSensitivityTable.size();
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([] {
            for (int club = 100; club < 140; ++club) {
                const __club_value_table_st row = OrvGetClubValueTable(club);
                const __swing_sensitivity_st sensitivity = OrvGetClubSensitivity(club);
                if (row.club != 0 || row.speedFactor != 0.0f || sensitivity.club != 0 ||
                    sensitivity.maxValue != 0 || sensitivity.scale[1] != 0.0f) {
                    ADD_FAILURE() << "row for unknown club " << club << " is not zero";
                }
            }
        });
    }
    for (std::thread& t : threads) {
        t.join();
    }
    EXPECT_EQ(gClubValueTable.size(), values + 40);
    EXPECT_EQ(gClubSensitivityTable.size(), sensitivities + 40);
}

TEST(ClubTables, ClubSelectCommandFromTheSensitivityRow) {
    const auto frame = [](OrvCmdManualClubSelectModel&& command) {
        bb* packet = command.MakeSendPacket();
        return std::vector<uint8_t>(packet->data, packet->data + packet->size);
    };
    EXPECT_EQ(frame(MakeClubSelectCommand(1, 0)),
              (std::vector<uint8_t>{
                  0x18, 0x0A,  // manual club select, 10 payload bytes
                  0x01,        // club
                  0xFF, 0x6A,  // low threshold -150
                  0x00, 0x64,  // high threshold 100
                  0xA0,        // factor 16 x 10
                  0x03, 0xE8,  // min 1000
                  0x08, 0x98,  // max 2200
                  0x18 ^ 0x0A ^ 0x01 ^ 0xFF ^ 0x6A ^ 0x64 ^ 0xA0 ^ 0x03 ^ 0xE8 ^ 0x08 ^ 0x98}));

    OrvCmdManualClubSelectModel putter = MakeClubSelectCommand(15, 2);
    EXPECT_EQ(putter.value1, -15);
    EXPECT_EQ(putter.value2, 10);
    EXPECT_EQ(putter.factor, 0.4f);
    OrvCmdManualClubSelectModel iron = MakeClubSelectCommand(7, 1);
    EXPECT_EQ(iron.value1, -70);
    EXPECT_EQ(iron.value2, 50);
    EXPECT_EQ(iron.factor, 4.0f);
    // Levels outside 0..2 take the nearest one.
    EXPECT_EQ(MakeClubSelectCommand(7, 5).factor, 1.15f);
    EXPECT_EQ(MakeClubSelectCommand(7, -1).factor, 8.0f);
}

}  // namespace
