// Command-line switches of the program: the debug-log switches, demo mode and
// console mode.
#pragma once

#include <string>

namespace orv {

struct StartupOptions {
    bool debug = false;        // "-debug": tagged log lines
    bool debugPacket = false;  // "-debug_packet": packet dumps
    bool debugFile = false;    // "-debug_file": the log goes to "log.txt" (with a debug switch)
    bool demo = false;         // "-demo": in-process virtual sensor
    bool console = false;      // "-console": no window, states and shots on standard output
    bool help = false;         // "-h" or "--help": usage, then exit
    bool version = false;      // "--version": the version, then exit
    std::string exportHistory;  // "-export_history FILE": the shot history as CSV, then exit
};

// What "--help" prints.
extern const char kUsageText[];

// Looks at every argument from index 0; switches match exactly, case-sensitive.
StartupOptions ParseStartupOptions(int argc, const char* const* argv);

// Sets the log switches when a debug switch is given and then, with
// "-debug_file" too, sends standard output line-buffered to "log.txt" in the
// working folder. "-debug_file" alone does nothing. False when the log file
// could not be opened.
bool ApplyStartupOptions(const StartupOptions& options);

}  // namespace orv
