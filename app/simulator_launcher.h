// Starts the E6 simulator program from its installation folder. On this
// system a Windows program runs through Wine, or through a command the user
// names in the settings file.
#pragma once

#include <string>

namespace orv {

// Section "E6" of the settings file.
struct SimulatorLaunch {
    std::string folder;         // "DefaultPath": holds "e6golf.exe"; the working folder
    std::string winePrefix;     // "WinePrefix": WINEPREFIX of the program, when set
    std::string launchCommand;  // "LaunchCommand": starts the program instead of Wine
};

enum class SimulatorStart {
    kStarted,
    kNotInstalled,  // no folder known or no "e6golf.exe" in it: offer the simulator page
    kNoWine,        // a Windows program, no "wine" on PATH and no launch command
    kFailed,        // the starter would not start
};

struct SimulatorStartResult {
    SimulatorStart status = SimulatorStart::kNotInstalled;
    std::string starter;  // the program asked to start it, for the user's message
};

// A Windows program (it begins with "MZ") runs as `wine <program>`; the launch
// command (words split at blanks, double quotes keep a word whole) is run with
// the program's full path as its last argument; anything else is run itself.
// Detached, in the folder.
SimulatorStartResult StartSimulator(const SimulatorLaunch& launch);

}  // namespace orv
