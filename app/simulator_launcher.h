// Starts the E6 simulator program from its installation folder (the settings
// file's "E6"/"DefaultPath").
#pragma once

#include <string>

namespace orv {

enum class SimulatorStart {
    kStarted,
    kNotInstalled,  // no folder known or no "e6golf.exe" in it: offer the simulator page
    kFailed,        // the program is there but would not start
};

// Starts "<installFolder>/e6golf.exe" detached, with the folder as working folder.
SimulatorStart StartSimulator(const std::string& installFolder);

}  // namespace orv
