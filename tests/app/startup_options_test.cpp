#include "app/startup_options.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "common/debug_log.h"
#include "tests/support/file_text.h"
#include "tests/support/test_support.h"

namespace {

orv::StartupOptions Parse(std::initializer_list<const char*> args) {
    const std::vector<const char*> argv(args);
    return orv::ParseStartupOptions(static_cast<int>(argv.size()), argv.data());
}

TEST(StartupOptions, ExactSwitchesAnywhere) {
    const orv::StartupOptions none = Parse({"OrvaneWin"});
    EXPECT_FALSE(none.debug || none.debugPacket || none.debugFile || none.demo || none.console);

    // Index 0 counts too, and the order does not matter.
    const orv::StartupOptions all =
        Parse({"-debug_file", "x", "-console", "-debug_packet", "-demo", "-debug"});
    EXPECT_TRUE(all.debug && all.debugPacket && all.debugFile && all.demo && all.console);

    const orv::StartupOptions near = Parse(
        {"OrvaneWin", "-Debug", "-DEBUG", "--debug", "-debug ", "-debugfile", "debug", "-Demo"});
    EXPECT_FALSE(near.debug || near.debugPacket || near.debugFile || near.demo || near.console);
}

// Each case runs in a child process: the switches change the process's
// standard output and log state for good.
void RunIn(const std::filesystem::path& folder, std::initializer_list<const char*> args) {
    ASSERT_EQ(chdir(folder.c_str()), 0);
    if (!orv::ApplyStartupOptions(Parse(args))) {
        std::_Exit(2);
    }
    LOG_INFO("Main Language: %d\n", 1033);
    PrintRaw("[D] >> 0A 03\n");
    std::fflush(stdout);
    std::_Exit(IsShowLog() ? 10 : 0);
}

}  // namespace
