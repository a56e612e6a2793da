#include "protocol/code_tables.h"

#include <gtest/gtest.h>

#include <string>

namespace {

// The misspellings and odd numbers are part of the log texts users send in.
TEST(CodeTables, IrregularTextsAreKept) {
    const std::pair<const __code_tag*, std::string> cases[] = {
        {OrvGetCommandCodeDef(9), "ORV_COMMAND_RESET|Reset device(4)."},
        {OrvGetCommandCodeDef(14), "|Device display type(14)."},
        {OrvGetDataCodeDef(15), "|Left and right sig(15)."},
        {OrvGetResultCodeDef(3), "ORV_RES_WRONG_CHCECKSUM|"},
        {OrvGetResultCodeDef(0x11), "ORV_RES_ILLEAGAL_DATA|"},
        {OrvGetResultCodeDef(0x30), "ORV_RES_ILLEAGAL_MEMORY_READING|fail to read"},
        {OrvGetResultCodeDef(0x10), "|Unsupport command"},
        {OrvGetClubCodeDef(uint8_t{17}), "4Hybrid|4 Hybrid"},
    };
    for (const auto& [entry, expected] : cases) {
        ASSERT_NE(entry, nullptr) << expected;
        const auto bar = expected.find('|');
        if (bar > 0) {
            EXPECT_EQ(entry->name, expected.substr(0, bar));
        }
        if (bar + 1 < expected.size()) {
            EXPECT_EQ(entry->description, expected.substr(bar + 1));
        }
    }
}

TEST(CodeTables, UnknownCodesGiveNullAndNeverGrowATable) {
    for (int code = 0; code < 256; ++code) {
        const auto c = static_cast<uint8_t>(code);
        OrvGetCommandCodeDef(c);
        OrvGetDataCodeDef(c);
        OrvGetResultCodeDef(c);
        OrvGetClubCodeDef(c);
    }
    EXPECT_EQ(gOrvCommand.size(), 17u);
    EXPECT_EQ(gOrvData.size(), 11u);
    EXPECT_EQ(gOrvResultCodeDef.size(), 12u);
    EXPECT_EQ(gOrvClubCodeDef.size(), 17u);
    EXPECT_EQ(OrvGetCommandCodeDef(4), nullptr);
    EXPECT_EQ(OrvGetClubCodeDef(uint8_t{0}), nullptr);
    EXPECT_EQ(OrvGetDataCodeDef(3), nullptr);
}

TEST(CodeTables, ClubByNameFoldsCaseOnNamesOnly) {
    EXPECT_EQ(OrvGetClubCodeDef("putter")->code, 15);
    EXPECT_EQ(OrvGetClubCodeDef("3WOOD")->code, 2);
    EXPECT_EQ(OrvGetClubCodeDef("pitchingwedge")->code, 11);
    for (const char* name : {"3 Wood", "", "Putter ", static_cast<const char*>(nullptr)}) {
        EXPECT_EQ(OrvGetClubCodeDef(name), nullptr);  // a description is not a name
    }
    EXPECT_FALSE(SafeStringiCompare("[", "{"));  // '[' and '{' differ by the case bit
}

}  // namespace
