// Start E6 as it runs on a Linux desktop: a Windows program through the
// `wine` found on PATH, or through the user's own command, in its folder.
#include "app/simulator_launcher.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <fstream>

#include "tests/common/env_var.h"
#include "tests/support/file_text.h"
#include "tests/support/test_support.h"

namespace orv::test {
namespace {

// Stands in for wine, for a user's launcher and for a native program alike:
// records how it was started.
void WriteRecorder(const std::filesystem::path& file, const std::filesystem::path& record) {
    std::filesystem::create_directories(file.parent_path());
    std::ofstream(file) << "#!/bin/sh\nprintf '%s|%s|%s|%s\\n' \"$0\" \"$*\" \"$WINEPREFIX\" "
                           "\"$PWD\" > '"
                        << record.string() << "'\n";
    chmod(file.c_str(), 0755);
}

TEST(SimulatorLauncher, FindsWineOrTheUsersCommandAndTellsWhenNothingCanStartIt) {
    TempDir dir;
    const auto root = dir.path();
    const auto record = root / "record.txt";
    const std::string e6 = (root / "E6 Golf").string();  // a blank, as in Windows folders
    std::filesystem::create_directories(e6);
    std::ofstream(e6 + "/e6golf.exe") << "MZ\x90" << std::string(61, '\0') << "PE";
    WriteRecorder(root / "bin/wine", record);
    WriteRecorder(root / "my launcher", record);
    WriteRecorder(root / "native/e6golf.exe", record);
    const std::string wine = (root / "bin/wine").string();
    const std::string launcher = (root / "my launcher").string();
    const std::string native = (root / "native").string();
    const std::string exe = e6 + "/e6golf.exe";

    struct Case {
        std::string path, folder, prefix, command;
        SimulatorStart status;
        std::string starter, recorded;
    };
    const std::string bin = (root / "bin").string();
    const std::string empty = (root / "nothing").string();
    const Case cases[] = {
        {bin, e6, "", "", SimulatorStart::kStarted, wine, wine + "|" + exe + "||" + e6},
        {bin, e6, "/home/u/.wine-e6", "", SimulatorStart::kStarted, wine,
         wine + "|" + exe + "|/home/u/.wine-e6|" + e6},
        {empty, e6, "/p", '"' + launcher + "\" --fullscreen", SimulatorStart::kStarted, launcher,
         launcher + "|--fullscreen " + exe + "|/p|" + e6},
        {bin, e6, "", "/nonexistent/starter", SimulatorStart::kFailed, "/nonexistent/starter", ""},
        {empty, native, "", "", SimulatorStart::kStarted, native + "/e6golf.exe",
         native + "/e6golf.exe|||" + native},
        {bin, "", "", "", SimulatorStart::kNotInstalled, "", ""},
        {bin, bin, "", "", SimulatorStart::kNotInstalled, "", ""},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.folder + " " + c.command + " on PATH " + c.path);
        std::filesystem::remove(record);
        EnvVar path("PATH", c.path.c_str());
        EnvVar prefix("WINEPREFIX", nullptr);
        const SimulatorStartResult result = StartSimulator({c.folder, c.prefix, c.command});
        EXPECT_EQ(result.status, c.status);
        EXPECT_EQ(result.starter, c.starter);
        if (!c.recorded.empty()) {
            EXPECT_TRUE(Eventually([&] { return ReadFileText(record) == c.recorded + "\n"; }))
                << ReadFileText(record);
        }
    }
}

}  // namespace
}  // namespace orv::test
