#include "common/string_res.h"

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

#include "common/language_id.h"
#include "common/string_table.h"
#include "tests/common/announcements.h"
#include "tests/common/env_var.h"
#include "tests/support/test_support.h"

namespace {

using orv::test::EnvVar;
using orv::test::kLanguages;

struct StringRes : ::testing::Test {
    ~StringRes() override { LoadLanguageModule(1033); }
};

TEST(LanguageId, LocaleNamesMapToWindowsIds) {
    using orv::LanguageIdFromLocale;
    EXPECT_EQ(LanguageIdFromLocale("ja_JP.UTF-8"), 1041);
    EXPECT_EQ(LanguageIdFromLocale("ko_KR.UTF-8"), 1042);
    EXPECT_EQ(LanguageIdFromLocale("zh_CN.UTF-8"), 2052);
    EXPECT_EQ(LanguageIdFromLocale("zh_SG"), 4100);
    EXPECT_EQ(LanguageIdFromLocale("zh_TW.UTF-8"), 1028);
    EXPECT_EQ(LanguageIdFromLocale("zh"), 2052);
    EXPECT_EQ(LanguageIdFromLocale("en_US.UTF-8"), 1033);
    EXPECT_EQ(LanguageIdFromLocale("en_GB.ISO-8859-15@euro"), 2057);
    EXPECT_EQ(LanguageIdFromLocale("de_DE.UTF-8"), 1031);
    EXPECT_EQ(LanguageIdFromLocale("de_AT"), 3079);
    EXPECT_EQ(LanguageIdFromLocale("fr"), 1036);
    EXPECT_EQ(LanguageIdFromLocale("pt_BR.UTF-8"), 1046);
    EXPECT_EQ(LanguageIdFromLocale("C.UTF-8"), 1033);
    EXPECT_EQ(LanguageIdFromLocale("POSIX"), 1033);
    EXPECT_EQ(LanguageIdFromLocale(""), 1033);
    EXPECT_EQ(LanguageIdFromLocale("xx_YY"), 1033);
}

TEST(LanguageId, MessagesLocaleFollowsTheCLibraryOrder) {
    EnvVar all("LC_ALL", nullptr);
    EnvVar messages("LC_MESSAGES", "ko_KR.UTF-8");
    EnvVar lang("LANG", "ja_JP.UTF-8");
    EXPECT_EQ(GetUserDefaultLanguageId(), 1042);
    {
        EnvVar set("LC_ALL", "de_DE.UTF-8");
        EXPECT_EQ(GetUserDefaultLanguageId(), 1031);
    }
    {
        EnvVar empty("LC_MESSAGES", "");
        EXPECT_EQ(GetUserDefaultLanguageId(), 1041);
    }
    EnvVar noMessages("LC_MESSAGES", nullptr);
    EnvVar noLang("LANG", nullptr);
    EXPECT_EQ(GetUserDefaultLanguageId(), 1033);
}

TEST(LanguageId, OnlyJapaneseKoreanAndSimplifiedChineseHaveTheirOwnTable) {
    EXPECT_STREQ(orv::LanguageFolderName(1041), "ja");
    EXPECT_STREQ(orv::LanguageFolderName(1042), "ko");
    EXPECT_STREQ(orv::LanguageFolderName(2052), "zh");
    EXPECT_STREQ(orv::LanguageFolderName(1028), "en");
    EXPECT_STREQ(orv::LanguageFolderName(1031), "en");
    EXPECT_STREQ(orv::LanguageFolderName(1033), "en");
}

TEST_F(StringRes, EveryLanguageHasEveryText) {
    for (const auto& language : kLanguages) {
        SCOPED_TRACE(language.folder);
        ASSERT_TRUE(LoadLanguageModule(language.id)) << "bin/lang beside the test program";
        for (unsigned id = 161; id <= 182; ++id) {
            if (id != 179) {
                EXPECT_FALSE(GetStringRes(id).empty()) << id;
            }
        }
        EXPECT_EQ(GetStringRes(179), "");
        EXPECT_EQ(GetStringRes(160), "");
        EXPECT_EQ(GetStringRes(183), "");
        EXPECT_NE(GetStringRes(174).find('\n'), std::string::npos) << "two-line message";

        for (const std::string& unit :
             {std::string("yards"), GetStringRes(170), GetStringRes(171)}) {
            const std::string text = FormatDistanceText(GetStringRes(169), unit, 150);
            EXPECT_NE(text.find("150"), std::string::npos) << text;
            EXPECT_NE(text.find(unit), std::string::npos) << text;
            EXPECT_EQ(text.find('%'), std::string::npos) << text;
        }
    }
    LoadLanguageModule(1033);
    EXPECT_EQ(FormatDistanceText(GetStringRes(169), GetStringRes(170), 150),
              "150 yards to the pin.");
    LoadLanguageModule(1041);
    EXPECT_EQ(FormatDistanceText(GetStringRes(169), GetStringRes(170), 150),
              "ピンまで150ヤードです。");
}

TEST_F(StringRes, TablesHoldOnlyWellFormedLines) {
    for (const auto& language : kLanguages) {
        SCOPED_TRACE(language.folder);
        std::ifstream in(orv::ProgramFolder() / "lang" / language.folder / "strings.tsv");
        std::ostringstream text;
        text << in.rdbuf();
        size_t rejected = 99;
        EXPECT_EQ(orv::ParseStringTable(text.str(), &rejected).size(), 22u);
        EXPECT_EQ(rejected, 0u);
    }
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
