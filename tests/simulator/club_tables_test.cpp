#include "simulator/club_tables.h"

#include <gtest/gtest.h>

#include <thread>
#include <vector>

namespace {

TEST(ClubTables, UnknownCodesYieldZeroRowsAndGrowTheTablesFromManyThreads) {
    const size_t values = gClubValueTable.size();
    const size_t sensitivities = gClubSensitivityTable.size();
    {
        std::vector<std::jthread> threads;
        for (int t = 0; t < 4; ++t) {
            threads.emplace_back([] {
                for (int club = 100; club < 140; ++club) {
                    EXPECT_EQ(OrvGetClubValueTable(club).speedFactor, 0.0f) << club;
                    EXPECT_EQ(OrvGetClubSensitivity(club).scale[1], 0.0f) << club;
                }
            });
        }
    }  // all joined
    EXPECT_EQ(gClubValueTable.size(), values + 40);
    EXPECT_EQ(gClubSensitivityTable.size(), sensitivities + 40);
}

TEST(ClubTables, ClubSelectCommandTakesTheRowOfItsClubAndLevel) {
    // The bytes of the command are checked where the session sends it.
    const struct {
        int club, level, low, high;
        float factor;
    } rows[] = {{1, 0, -150, 100, 16},
                {15, 2, -15, 10, 0.4f},
                {7, 1, -70, 50, 4},
                // Levels outside 0..2 take the nearest one.
                {7, 5, -15, 10, 1.15f},
                {7, -1, -150, 100, 8}};
    for (const auto& row : rows) {
        const OrvCmdManualClubSelectModel command = MakeClubSelectCommand(row.club, row.level);
        SCOPED_TRACE(testing::Message() << row.club << " level " << row.level);
        EXPECT_EQ(command.club, row.club);
        EXPECT_EQ(command.value1, row.low);
        EXPECT_EQ(command.value2, row.high);
        EXPECT_EQ(command.factor, row.factor);
        EXPECT_EQ(command.value3, 1000);
        EXPECT_EQ(command.value4, 2200);
    }
}

}  // namespace
