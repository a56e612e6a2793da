#include "app/startup_options.h"

#include <gtest/gtest.h>

#include <vector>

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

}  // namespace
