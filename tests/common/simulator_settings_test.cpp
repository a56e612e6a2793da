#include "common/simulator_settings.h"

#include <gtest/gtest.h>

#include "common/debug_log.h"
#include "common/settings.h"
#include "tests/support/file_text.h"
#include "tests/support/test_support.h"

namespace {

namespace fs = std::filesystem;
using orv::test::ReadFileText;
using orv::test::WriteFileText;

// As the simulator writes it (shortened).
const char kDefaultsStg[] =
    "<?xml version=\"1.0\" encoding=\"utf-8\"?>\r\n"
    "<SettingsFile Version=\"3\">\r\n"
    "  <InterfaceSettings ShowDrivingRangeAnalyzer=\"False\" Units=\"Yards\" "
    "ShowPostShotAnalyzer=\"False\" />\r\n"
    "  <AudioSettings Master=\"0.8\">crowd &amp; birds</AudioSettings>\r\n"
    "</SettingsFile>\r\n";

const char kShown[] =
    "<?xml version=\"1.0\"?>\n"
    "<SettingsFile Version=\"3\">\n"
    "\t<InterfaceSettings ShowDrivingRangeAnalyzer=\"True\" Units=\"Yards\" "
    "ShowPostShotAnalyzer=\"True\" />\n"
    "\t<AudioSettings Master=\"0.8\">crowd &amp; birds</AudioSettings>\n"
    "</SettingsFile>\n";

TEST(ShowResult, AnalysersFollowTheHiddenResultScreenAndAnythingButXmlIsLeftAlone) {
    orv::test::TempDir dir;
    const fs::path simulator = dir.path() / "E6 Golf";
    const fs::path stg = simulator / "defaults.stg";
    fs::create_directory(simulator);
    WriteFileText(dir.path() / "settings.ini",
                  "[E6]\nWriteableFilesPath=" + simulator.string() + "\nDefaultPath=/opt/e6\n");
    OrvSettings settings(dir.path());
    EXPECT_EQ(settings.GetSimulatorPath("DefaultPath"), "/opt/e6");
    settings.hideShotResult = true;

    {
        orv::test::LogCapture log;
        settings.SaveShowResult();
        EXPECT_FALSE(fs::exists(stg)) << "a missing file is not created";
        for (const std::string& broken :
             {std::string(kDefaultsStg).substr(0, 120), std::string()}) {
            WriteFileText(stg, broken);
            settings.SaveShowResult();
            EXPECT_EQ(ReadFileText(stg), broken);
        }
        EXPECT_EQ(orv::test::CountOf(log.Text(), "defaults.stg: missing, not updated\n"), 1u);
        EXPECT_EQ(orv::test::CountOf(log.Text(), "defaults.stg: not XML, not updated\n"), 2u);
    }

    WriteFileText(stg, kDefaultsStg);
    settings.SaveShowResult();
    EXPECT_EQ(ReadFileText(stg), kShown);
    settings.hideShotResult = false;
    settings.SaveSetting();
    std::string hidden = kShown;
    for (size_t at; (at = hidden.find("\"True\"")) != std::string::npos;) {
        hidden.replace(at, 6, "\"False\"");
    }
    EXPECT_EQ(ReadFileText(stg), hidden);
}

}  // namespace
