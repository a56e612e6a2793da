#include "protocol/code_tables.h"

#include <gtest/gtest.h>

#include <string>

namespace {

TEST(CodeTables, SizesAndIrregularTextsAreKept) {
    EXPECT_EQ(gOrvCommand.size(), 17u);
    EXPECT_EQ(gOrvData.size(), 11u);
    EXPECT_EQ(gOrvResultCodeDef.size(), 12u);
    EXPECT_EQ(gOrvClubCodeDef.size(), 17u);

    EXPECT_STREQ(OrvGetCommandCodeDef(9)->name, "ORV_COMMAND_RESET");
    EXPECT_STREQ(OrvGetCommandCodeDef(9)->description, "Reset device(4).");
    EXPECT_STREQ(OrvGetCommandCodeDef(14)->description, "Device display type(14).");
    EXPECT_STREQ(OrvGetCommandCodeDef(28)->description, "Handed request(28).");
    EXPECT_STREQ(OrvGetDataCodeDef(4)->description, "State(4)");
    EXPECT_STREQ(OrvGetDataCodeDef(6)->description, "Firmware version(6)");
    EXPECT_STREQ(OrvGetDataCodeDef(15)->description, "Left and right sig(15).");
    EXPECT_STREQ(OrvGetResultCodeDef(3)->name, "ORV_RES_WRONG_CHCECKSUM");
    EXPECT_STREQ(OrvGetResultCodeDef(0x11)->name, "ORV_RES_ILLEAGAL_DATA");
    EXPECT_STREQ(OrvGetResultCodeDef(0x30)->name, "ORV_RES_ILLEAGAL_MEMORY_READING");
    EXPECT_STREQ(OrvGetResultCodeDef(0x31)->name, "ORV_RES_ILLEAGAL_MEMORY_WRITING");
    EXPECT_STREQ(OrvGetResultCodeDef(0x10)->description, "Unsupport command");
    EXPECT_STREQ(OrvGetResultCodeDef(0x30)->description, "fail to read");
    EXPECT_STREQ(OrvGetClubCodeDef(uint8_t{17})->name, "4Hybrid");
    EXPECT_STREQ(OrvGetClubCodeDef(uint8_t{17})->description, "4 Hybrid");
    EXPECT_STREQ(OrvGetClubCodeDef(uint8_t{16})->description, "3 Iron");

    // Every entry carries its own key as its code.
    for (const auto* table : {&gOrvCommand, &gOrvData, &gOrvResultCodeDef, &gOrvClubCodeDef}) {
        for (const auto& [key, entry] : *table) {
            EXPECT_EQ(key, entry.code) << entry.name;
        }
    }
}

TEST(CodeTables, UnknownCodesGiveNullAndNeverGrowATable) {
    for (int code : {1, 4, 5, 6, 7, 8, 30, 255}) {
        EXPECT_EQ(OrvGetCommandCodeDef(static_cast<uint8_t>(code)), nullptr) << code;
    }
    for (int pass = 0; pass < 2; ++pass) {
        for (int code = 0; code < 256; ++code) {
            const auto c = static_cast<uint8_t>(code);
            OrvGetCommandCodeDef(c);
            OrvGetDataCodeDef(c);
            OrvGetResultCodeDef(c);
            OrvGetClubCodeDef(c);
        }
    }
    EXPECT_EQ(gOrvCommand.size(), 17u);
    EXPECT_EQ(gOrvData.size(), 11u);
    EXPECT_EQ(gOrvResultCodeDef.size(), 12u);
    EXPECT_EQ(gOrvClubCodeDef.size(), 17u);
    EXPECT_EQ(OrvGetClubCodeDef(uint8_t{0}), nullptr);
    EXPECT_EQ(OrvGetDataCodeDef(3), nullptr);
}

TEST(CodeTables, ClubByNameFoldsCaseOnNamesOnly) {
    EXPECT_EQ(OrvGetClubCodeDef("putter")->code, 15);
    EXPECT_EQ(OrvGetClubCodeDef("3WOOD")->code, 2);
    EXPECT_EQ(OrvGetClubCodeDef("pitchingwedge")->code, 11);
    EXPECT_EQ(OrvGetClubCodeDef("3 Wood"), nullptr);  // a description, not a name
    EXPECT_EQ(OrvGetClubCodeDef(""), nullptr);
    EXPECT_EQ(OrvGetClubCodeDef(static_cast<const char*>(nullptr)), nullptr);
    EXPECT_EQ(OrvGetClubCodeDef("Putter "), nullptr);
}

TEST(CodeTables, SafeStringiCompareFoldsAsciiLettersOnly) {
    EXPECT_TRUE(SafeStringiCompare("TRUE", "true"));
    EXPECT_TRUE(SafeStringiCompare("", ""));
    EXPECT_FALSE(SafeStringiCompare("true", "tru"));
    EXPECT_FALSE(SafeStringiCompare("[", "{"));                // '[' and '{' differ by the case bit
    EXPECT_FALSE(SafeStringiCompare("\xC3\xA9", "\xC3\x89"));  // no Unicode folding
    EXPECT_TRUE(SafeStringiCompare(std::string("a\0b", 3), std::string("A\0B", 3)));
}

}  // namespace
