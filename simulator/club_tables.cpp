#include "simulator/club_tables.h"

#include <algorithm>
#include <mutex>

namespace {

// Guards the growth of both tables by lookups from the session's threads.
std::mutex gClubTablesMutex;

constexpr int16_t kLowThreshold[3] = {-150, -70, -15};
constexpr int16_t kHighThreshold[3] = {100, 50, 10};
// The putter keeps the finest thresholds at every level.
constexpr int16_t kPutterLowThreshold = -15;
constexpr int16_t kPutterHighThreshold = 10;

__swing_sensitivity_st SensitivityRow(int32_t club, float scale0, float scale1, float scale2) {
    const bool putter = club == 15;
    __swing_sensitivity_st row{};
    row.club = club;
    for (int level = 0; level < 3; ++level) {
        row.lowThreshold[level] = putter ? kPutterLowThreshold : kLowThreshold[level];
        row.highThreshold[level] = putter ? kPutterHighThreshold : kHighThreshold[level];
    }
    row.scale[0] = scale0;
    row.scale[1] = scale1;
    row.scale[2] = scale2;
    row.minValue = 1000;
    row.maxValue = 2200;
    return row;
}

std::map<uint8_t, __swing_sensitivity_st> MakeSensitivityTable() {
    std::map<uint8_t, __swing_sensitivity_st> table;
    auto add = [&table](std::initializer_list<int32_t> clubs, float s0, float s1, float s2) {
        for (int32_t club : clubs) {
            table[static_cast<uint8_t>(club)] = SensitivityRow(club, s0, s1, s2);
        }
    };
    add({1, 2, 3, 4, 16, 17}, 16.0f, 8.0f, 1.15f);
    add({5, 6, 7, 8, 9, 10}, 8.0f, 4.0f, 1.15f);
    add({11, 12, 13}, 4.0f, 2.0f, 1.15f);
    add({14}, 1.3f, 1.3f, 1.15f);
    add({15}, 1.0f, 0.6f, 0.4f);
    return table;
}

template <typename Row>
Row InsertingLookup(std::map<uint8_t, Row>& table, int club) {
    const std::lock_guard<std::mutex> lock(gClubTablesMutex);
    return table[static_cast<uint8_t>(club)];
}

}  // namespace

// Rows 16 and 17 repeat row 4: the clubs added last reuse the 7-wood values.
std::map<uint8_t, __club_value_table_st> gClubValueTable = {
    {1, {1, 1.48f, 94.0f, 2600.0f, 13.2f, 0.90f}},
    {2, {2, 1.47f, 90.0f, 2700.0f, 11.2f, 0.88f}},
    {3, {3, 1.47f, 88.0f, 4500.0f, 12.1f, 0.88f}},
    {4, {4, 1.46f, 85.0f, 4600.0f, 12.7f, 0.88f}},
    {5, {5, 1.45f, 80.0f, 4800.0f, 14.3f, 0.88f}},
    {6, {6, 1.42f, 79.0f, 5000.0f, 14.8f, 0.88f}},
    {7, {7, 1.39f, 78.0f, 5900.0f, 17.1f, 0.88f}},
    {8, {8, 1.37f, 76.0f, 6600.0f, 19.0f, 0.90f}},
    {9, {9, 1.35f, 74.0f, 7500.0f, 20.8f, 0.90f}},
    {10, {10, 1.28f, 72.0f, 7600.0f, 23.9f, 0.90f}},
    {11, {11, 1.23f, 70.0f, 8400.0f, 25.6f, 0.92f}},
    {12, {12, 1.21f, 69.0f, 8900.0f, 28.1f, 0.94f}},
    {13, {13, 1.19f, 65.0f, 9300.0f, 32.2f, 0.96f}},
    {14, {14, 1.09f, 60.0f, 10000.0f, 37.8f, 0.98f}},
    {15, {15, 1.45f, 2.5f, 20.0f, 2.5f, 1.00f}},
    {16, {16, 1.46f, 85.0f, 4600.0f, 12.7f, 0.88f}},
    {17, {17, 1.46f, 85.0f, 4600.0f, 12.7f, 0.88f}},
};

std::map<uint8_t, __swing_sensitivity_st> gClubSensitivityTable = MakeSensitivityTable();

__club_value_table_st OrvGetClubValueTable(int club) {
    return InsertingLookup(gClubValueTable, club);
}

__swing_sensitivity_st OrvGetClubSensitivity(int club) {
    return InsertingLookup(gClubSensitivityTable, club);
}

OrvCmdManualClubSelectModel MakeClubSelectCommand(int club, int level) {
    const int at = std::clamp(level, 0, 2);
    const __swing_sensitivity_st row = OrvGetClubSensitivity(club);
    return OrvCmdManualClubSelectModel(club, row.lowThreshold[at], row.highThreshold[at],
                                       row.minValue, row.maxValue, row.scale[at]);
}
