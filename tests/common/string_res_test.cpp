#include "common/string_res.h"

#include <gtest/gtest.h>

#include "common/language_id.h"
#include "common/string_table.h"
#include "tests/common/env_var.h"
#include "tests/support/test_support.h"

namespace {

using orv::test::EnvVar;

struct StringRes : ::testing::Test {
    ~StringRes() override { LoadLanguageModule(1033); }
};

TEST(LanguageId, MessagesLocaleFollowsTheCLibraryOrder) {
    const struct {
        const char *all, *messages, *lang;
        int id;
    } rows[] = {{nullptr, "ko_KR.UTF-8", "ja_JP.UTF-8", 1042},
                {"de_DE.UTF-8", "ko_KR.UTF-8", "ja_JP.UTF-8", 1031},
                {nullptr, "", "ja_JP.UTF-8", 1041},
                {nullptr, nullptr, nullptr, 1033}};
    for (const auto& row : rows) {
        EnvVar all("LC_ALL", row.all), messages("LC_MESSAGES", row.messages),
            lang("LANG", row.lang);
        EXPECT_EQ(GetUserDefaultLanguageId(), row.id) << row.id;
    }
}

TEST_F(StringRes, EveryLanguageHasEveryText) {
    for (const int language : {1033, 1041, 1042, 2052}) {  // en ja ko zh
        SCOPED_TRACE(language);
        ASSERT_TRUE(LoadLanguageModule(language)) << "bin/lang beside the test program";
        for (unsigned id = 161; id <= 182; ++id) {
            if (id != 179) {
                EXPECT_FALSE(GetStringRes(id).empty()) << id;
            }
        }
        EXPECT_EQ(GetStringRes(179), "");
        EXPECT_NE(GetStringRes(174).find('\n'), std::string::npos) << "two-line message";
        const std::string text = FormatDistanceText(GetStringRes(169), GetStringRes(171), 150);
        EXPECT_NE(text.find("150"), std::string::npos) << text;
        EXPECT_NE(text.find(GetStringRes(171)), std::string::npos) << text;
        EXPECT_EQ(text.find('%'), std::string::npos) << text;
    }
    LoadLanguageModule(1033);
    EXPECT_EQ(FormatDistanceText(GetStringRes(169), GetStringRes(170), 150),
              "150 yards to the pin.");
    LoadLanguageModule(1041);
    EXPECT_EQ(FormatDistanceText(GetStringRes(169), GetStringRes(170), 150),
              "ピンまで150ヤードです。");
}

TEST_F(StringRes, OtherLanguagesGetEnglishAndAMissingTableGivesEmptyTexts) {
    ASSERT_TRUE(LoadLanguageModule(1031));
    EXPECT_EQ(GetStringRes(162), "Sensor connected.");
    orv::test::TempDir empty;
    EXPECT_FALSE(LoadLanguageModuleFrom(empty.path(), 1041));
    EXPECT_EQ(GetStringRes(162), "");
}

TEST(StringTable, ParsesEntriesAndRejectsMalformedLines) {
    const std::string text =
        "\xEF\xBB\xBF# comment\r\n"
        "\n"
        "161\tTwo\\nlines, a \\\\ and a\\ttab\r\n"
        "162\ttab\tinside\n"
        "163\t\n"
        "162\tsecond 162 is refused\n"
        "no tab here\n"
        "12a\tbad id\n"
        "65536\tid too large\n"
        "\tno id\n"
        "65535\tlast";
    size_t rejected = 0;
    const orv::StringTable table = orv::ParseStringTable(text, &rejected);
    EXPECT_EQ(rejected, 5u);
    ASSERT_EQ(table.size(), 4u);
    EXPECT_EQ(table.at(161), "Two\nlines, a \\ and a\ttab");
    EXPECT_EQ(table.at(162), "tab\tinside");
    EXPECT_EQ(table.at(163), "");
    EXPECT_EQ(table.at(65535), "last");
}

}  // namespace
