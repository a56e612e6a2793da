// The program: reads the switches, refuses a second instance, picks the
// language, then runs the main window (or, without one, the console mode)
// until the user quits, and tears everything down in order.
#pragma once

#include <filesystem>

#include "app/startup_options.h"
#include "session/orv_manager.h"

namespace orv {

// "history.db" in the settings folder.
std::filesystem::path HistoryFile();

class COrvaneWinApp {
public:
    // Returns the process exit status.
    int Run(int argc, char** argv);

    // Links and timing of the session; the product keeps the defaults.
    Orvane::OrvManagerConfig sessionConfig;

private:
    int RunWindow(int argc, char** argv, const StartupOptions& options, int language);
    int RunConsole(int argc, char** argv, const StartupOptions& options, int language,
                   bool noDisplay);
    static void LoadLanguage(int language);
};

}  // namespace orv
