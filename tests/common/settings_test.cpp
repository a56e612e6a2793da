#include "common/settings.h"

#include <gtest/gtest.h>
#include <sys/resource.h>

#include <climits>
#include <csignal>
#include <cstdlib>
#include <string>

#include "common/debug_log.h"
#include "common/user_depends_data.h"
#include "tests/common/env_var.h"
#include "tests/support/file_text.h"
#include "tests/support/test_support.h"

namespace {

namespace fs = std::filesystem;
using orv::test::CountOf;
using orv::test::EnvVar;
using orv::test::ReadFileText;
using orv::test::WriteFileText;

// Values that no load would produce, so a test sees that loading set them.
void ScrambleSwingValues() {
    gUserDependsData.swingLevel = 99;
    gUserDependsData.swingSensitivity = 99;
    gUserDependsData.clubType = 99;
}

struct Settings : ::testing::Test {
    orv::test::TempDir dir;
    fs::path ini = dir.path() / "settings.ini";

    Settings() { ScrambleSwingValues(); }
    ~Settings() override {
        ShowLog(false, false);
        OrvSettings::ReleaseInstance();
    }
};

TEST_F(Settings, NoFileGivesDefaults) {
    OrvSettings settings(dir.path());
    EXPECT_EQ(settings.GetDifficulty(), 1);
    EXPECT_EQ(settings.GetSensitivity(), 1);
    EXPECT_EQ(settings.GetClubType(), 0);
    EXPECT_FALSE(settings.hideShotResult);
    EXPECT_TRUE(settings.backgroundSound);
    EXPECT_TRUE(settings.effectSound);
    EXPECT_FALSE(settings.showPreview);
    EXPECT_FALSE(settings.recording);
    EXPECT_EQ(settings.GetVersion(), "0.0.0");
    EXPECT_TRUE(settings.firstLaunch);
    EXPECT_EQ(settings.GetFolder(), dir.path());
    EXPECT_EQ(settings.GetIniPath(), ini);
    EXPECT_FALSE(fs::exists(ini)) << "loading alone writes nothing";
}

TEST_F(Settings, StoredValuesAreReadAndClamped) {
    WriteFileText(ini,
                  "[Golf]\nSwingLevel=7\nSwingSensitivity=-1\nClubType=2\nHideShotResult=5\n"
                  "Version=1.4.2\nFirstLaunch=1\n[Sound]\nBackground=0\nEffect=0\n"
                  "[Camera]\nShowPreview=1\nRecording=1\n");
    OrvSettings settings(dir.path());
    EXPECT_EQ(settings.GetDifficulty(), 1);
    EXPECT_EQ(settings.GetSensitivity(), 1);
    EXPECT_EQ(settings.GetClubType(), 0);
    EXPECT_TRUE(settings.hideShotResult);
    EXPECT_EQ(settings.GetVersion(), "1.4.2");
    EXPECT_FALSE(settings.firstLaunch);
    EXPECT_FALSE(settings.backgroundSound);
    EXPECT_FALSE(settings.effectSound);
    EXPECT_TRUE(settings.showPreview);
    EXPECT_TRUE(settings.recording);

    // Numbers are read as _wtoi reads them: leading digits count, text is 0.
    WriteFileText(ini,
                  "[golf]\nswinglevel= 2 levels\nSwingSensitivity=abc\nClubType=1\n"
                  "FirstLaunch=x\n[Sound]\nEffect=99999999999\n");
    settings.LoadSetting();
    EXPECT_EQ(settings.GetDifficulty(), 2);
    EXPECT_EQ(settings.GetSensitivity(), 0);
    EXPECT_EQ(settings.GetClubType(), 1);
    EXPECT_TRUE(settings.firstLaunch);
    EXPECT_TRUE(settings.effectSound);
    EXPECT_EQ(settings.GetVersion(), "0.0.0");

    // Quotes around a value are not part of it.
    WriteFileText(ini, "[Golf]\nVersion=\"2.0.0\"\n");
    settings.LoadSetting();
    EXPECT_EQ(settings.GetVersion(), "2.0.0");

    // The value buffer holds 259 characters.
    WriteFileText(ini, "[Golf]\nVersion=" + std::string(300, '7') + "\n");
    settings.LoadSetting();
    EXPECT_EQ(settings.GetVersion(), std::string(259, '7'));
}

TEST_F(Settings, SettersKeepValuesInRange) {
    OrvSettings settings(dir.path());
    settings.SetSensitivity(2);
    settings.SetSensitivity(3);
    settings.SetSensitivity(-1);
    EXPECT_EQ(settings.GetSensitivity(), 2);
    settings.SetDifficulty(0);
    settings.SetDifficulty(INT_MIN);
    settings.SetDifficulty(3);
    EXPECT_EQ(settings.GetDifficulty(), 0);
    settings.SetClubType(1);
    settings.SetClubType(2);
    settings.SetClubType(-1);
    EXPECT_EQ(settings.GetClubType(), 1);
    EXPECT_EQ(gUserDependsData.swingSensitivity, 2) << "the swing logic reads the shared values";
}

TEST_F(Settings, FirstLaunchFlipsOnEverySave) {
    const char* expected[] = {"FirstLaunch=1\n", "FirstLaunch=0\n", "FirstLaunch=1\n"};
    for (const char* line : expected) {
        OrvSettings settings(dir.path());
        settings.SaveSetting();
        EXPECT_NE(ReadFileText(ini).find(line), std::string::npos) << ReadFileText(ini);
    }
}

TEST_F(Settings, SaveWritesEveryValueBack) {
    {
        OrvSettings settings(dir.path());
        settings.SetDifficulty(2);
        settings.SetSensitivity(0);
        settings.SetClubType(1);
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
    OrvSettings again(dir.path());
    EXPECT_EQ(again.GetDifficulty(), 2);
    EXPECT_EQ(again.GetSensitivity(), 0);
    EXPECT_EQ(again.GetClubType(), 1);
    EXPECT_TRUE(again.hideShotResult);
    EXPECT_FALSE(again.backgroundSound);
    EXPECT_FALSE(again.effectSound);
    EXPECT_TRUE(again.showPreview);
    EXPECT_TRUE(again.recording);
}

TEST_F(Settings, SaveKeepsCommentsUnknownKeysAndSections) {
    WriteFileText(ini,
                  "; Orvane X settings, edited by hand\r\n"
                  "[Golf]\r\n"
                  "; how hard the ball flight is\r\n"
                  "SwingLevel=0\r\n"
                  "MyOwnKey=keep me\r\n"
                  "[E6]\r\n"
                  "WriteableFilesPath=/nowhere/e6\r\n"
                  "[Sound]\r\n"
                  "# no music please\r\n"
                  "Background=0\r\n"
                  "; the end\r\n");
    OrvSettings settings(dir.path());
    settings.SetDifficulty(2);
    settings.SaveSetting();
    const std::string text = ReadFileText(ini);
    EXPECT_EQ(text,
              "; Orvane X settings, edited by hand\n\n\n"
              "[Golf]\n\n"
              "; how hard the ball flight is\n"
              "SwingLevel=2\n"
              "MyOwnKey=keep me\n"
              "FirstLaunch=1\n"
              "SwingSensitivity=1\n"
              "ClubType=0\n"
              "HideShotResult=0\n"
              "Version=0.0.0\n\n\n"
              "[E6]\n"
              "WriteableFilesPath=/nowhere/e6\n\n\n"
              "[Sound]\n\n"
              "# no music please\n"
              "Background=0\n"
              "Effect=1\n\n\n"
              "[Camera]\n"
              "ShowPreview=0\n"
              "Recording=0\n"
              "; the end\n");
    EXPECT_EQ(settings.GetSimulatorPath("WriteableFilesPath"), "/nowhere/e6");
    EXPECT_EQ(settings.GetSimulatorPath("DefaultPath"), "");
}

TEST_F(Settings, SingletonAndEffectSwitch) {
    EXPECT_TRUE(OrvSettings::IsEffectSoundOn()) << "no settings: speech allowed";
    OrvSettings* settings = OrvSettings::GetInstanceIn(dir.path());
    orv::test::TempDir other;
    EXPECT_EQ(OrvSettings::GetInstanceIn(other.path()), settings);
    EXPECT_EQ(OrvSettings::GetInstance(), settings);
    EXPECT_EQ(settings->GetFolder(), dir.path());
    settings->effectSound = false;
    EXPECT_FALSE(OrvSettings::IsEffectSoundOn());
    OrvSettings::ReleaseInstance();
    EXPECT_TRUE(OrvSettings::IsEffectSoundOn());
    OrvSettings::ReleaseInstance();
}

TEST(SettingsFolder, ConfigHomeThenHomeThenTemporaryFolder) {
    {
        EnvVar config("XDG_CONFIG_HOME", "/srv/cfg");
        EXPECT_EQ(OrvSettings::DefaultFolder(), fs::path("/srv/cfg/Orvane X"));
    }
    {
        EnvVar config("XDG_CONFIG_HOME", "relative/ignored");
        EnvVar home("HOME", "/home/golfer");
        EXPECT_EQ(OrvSettings::DefaultFolder(), fs::path("/home/golfer/.config/Orvane X"));
    }
    EnvVar config("XDG_CONFIG_HOME", nullptr);
    EnvVar home("HOME", nullptr);
    EXPECT_EQ(OrvSettings::DefaultFolder(), fs::temp_directory_path());
}

}  // namespace
