#include "common/settings.h"

#include <gtest/gtest.h>

#include <array>
#include <climits>
#include <sstream>
#include <string>

#include "common/user_depends_data.h"
#include "tests/common/env_var.h"
#include "tests/support/file_text.h"
#include "tests/support/test_support.h"

namespace {

namespace fs = std::filesystem;
using orv::test::EnvVar;
using orv::test::ReadFileText;
using orv::test::WriteFileText;

// Values that no load would produce, so a test sees that loading set them.
void ScrambleSwingValues() {
    gUserDependsData.swingLevel = 99;
    gUserDependsData.swingSensitivity = 99;
    gUserDependsData.clubType = 99;
}

std::string Values(OrvSettings& s) {
    std::ostringstream out;
    out << "level:" << s.GetDifficulty() << " sens:" << s.GetSensitivity()
        << " club:" << s.GetClubType() << " hide:" << s.hideShotResult
        << " bg:" << s.backgroundSound << " fx:" << s.effectSound << " preview:" << s.showPreview
        << " rec:" << s.recording << " first:" << s.firstLaunch << " v:" << s.GetVersion();
    return out.str();
}

struct Settings : ::testing::Test {
    orv::test::TempDir dir;
    fs::path ini = dir.path() / "settings.ini";
    ~Settings() override { OrvSettings::ReleaseInstance(); }
};

TEST_F(Settings, LoadReadsClampsAndDefaults) {
    const struct {
        const char* file;  // nullptr: no file
        const char* values;
    } cases[] = {
        {nullptr, "level:1 sens:1 club:0 hide:0 bg:1 fx:1 preview:0 rec:0 first:1 v:0.0.0"},
        {"[Golf]\nSwingLevel=7\nSwingSensitivity=-1\nClubType=2\nHideShotResult=5\n"
         "Version=1.4.2\nFirstLaunch=1\n[Sound]\nBackground=0\nEffect=0\n"
         "[Camera]\nShowPreview=1\nRecording=1\n",
         "level:1 sens:1 club:0 hide:1 bg:0 fx:0 preview:1 rec:1 first:0 v:1.4.2"},
        // Numbers are read as _wtoi reads them: leading digits count, text is 0.
        // Quotes around a value are not part of it.
        {"[golf]\nswinglevel= 2 levels\nSwingSensitivity=abc\nClubType=1\nVersion=\"2.0.0\"\n"
         "FirstLaunch=x\n[Sound]\nEffect=99999999999\n",
         "level:2 sens:0 club:1 hide:0 bg:1 fx:1 preview:0 rec:0 first:1 v:2.0.0"},
    };
    for (const auto& c : cases) {
        if (c.file != nullptr) {
            WriteFileText(ini, c.file);
        }
        ScrambleSwingValues();
        OrvSettings settings(dir.path());
        EXPECT_EQ(Values(settings), c.values) << (c.file ? c.file : "no file");
    }
}

TEST_F(Settings, SettersKeepValuesInRangeAndSaveWritesThemBackAndFlipsFirstLaunch) {
    {
        OrvSettings settings(dir.path());
        EXPECT_FALSE(fs::exists(ini)) << "loading alone writes nothing";
        // Valid, then out of range above and below: the valid value stays.
        for (const auto& [level, sensitivity, club] :
             {std::array{2, 0, 1}, {3, 3, 2}, {-1, INT_MIN, -1}}) {
            settings.SetDifficulty(level);
            settings.SetSensitivity(sensitivity);
            settings.SetClubType(club);
        }
        EXPECT_EQ(gUserDependsData.swingSensitivity, 0)
            << "the swing logic reads the shared values";
        settings.hideShotResult = true;
        settings.backgroundSound = false;
        settings.effectSound = false;
        settings.showPreview = true;
        settings.recording = true;
        settings.SaveSetting();
    }
    EXPECT_EQ(ReadFileText(ini),
              "[Golf]\nFirstLaunch=1\nSwingLevel=2\nSwingSensitivity=0\nClubType=1\n"
              "HideShotResult=1\nVersion=0.0.0\n\n\n[Sound]\nBackground=0\nEffect=0\n\n\n"
              "[Camera]\nShowPreview=1\nRecording=1\n");
    ScrambleSwingValues();
    for (const char* first : {"first:0", "first:1"}) {
        OrvSettings again(dir.path());
        EXPECT_EQ(Values(again),
                  std::string("level:2 sens:0 club:1 hide:1 bg:0 fx:0 preview:1 rec:1 ") + first +
                      " v:0.0.0");
        again.SaveSetting();
    }
}

TEST_F(Settings, SaveKeepsCommentsUnknownKeysAndSections) {
    WriteFileText(
        ini,
        "; Orvane X settings, edited by hand\r\n[Golf]\r\n; how hard the ball flight is\r\n"
        "SwingLevel=0\r\nMyOwnKey=keep me\r\n[E6]\r\nWriteableFilesPath=/nowhere/e6\r\n"
        "[Sound]\r\n# no music please\r\nBackground=0\r\n; the end\r\n");
    OrvSettings settings(dir.path());
    settings.SetDifficulty(2);
    settings.SaveSetting();
    EXPECT_EQ(ReadFileText(ini),
              "; Orvane X settings, edited by hand\n\n\n[Golf]\n\n; how hard the ball flight is\n"
              "SwingLevel=2\nMyOwnKey=keep me\nFirstLaunch=1\nSwingSensitivity=1\nClubType=0\n"
              "HideShotResult=0\nVersion=0.0.0\n\n\n[E6]\nWriteableFilesPath=/nowhere/e6\n\n\n"
              "[Sound]\n\n# no music please\nBackground=0\nEffect=1\n\n\n"
              "[Camera]\nShowPreview=0\nRecording=0\n; the end\n");
}

TEST_F(Settings, SingletonAndEffectSwitch) {
    EXPECT_TRUE(OrvSettings::IsEffectSoundOn()) << "no settings: speech allowed";
    OrvSettings* settings = OrvSettings::GetInstanceIn(dir.path());
    EXPECT_EQ(OrvSettings::GetInstanceIn(fs::temp_directory_path()), settings);
    EXPECT_EQ(OrvSettings::GetInstance(), settings);
    EXPECT_EQ(settings->GetFolder(), dir.path());
    settings->effectSound = false;
    EXPECT_FALSE(OrvSettings::IsEffectSoundOn());
    OrvSettings::ReleaseInstance();
    EXPECT_TRUE(OrvSettings::IsEffectSoundOn());
    OrvSettings::ReleaseInstance();
}

TEST(SettingsFolder, ConfigHomeThenHomeThenTemporaryFolder) {
    const struct {
        const char *config, *home;
        fs::path folder;
    } rows[] = {{"/srv/cfg", "/home/golfer", "/srv/cfg/Orvane X"},
                {"relative/ignored", "/home/golfer", "/home/golfer/.config/Orvane X"},
                {nullptr, nullptr, fs::temp_directory_path()}};
    for (const auto& row : rows) {
        EnvVar config("XDG_CONFIG_HOME", row.config), home("HOME", row.home);
        EXPECT_EQ(OrvSettings::DefaultFolder(), row.folder);
    }
}

}  // namespace
