#include "app/startup_options.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>

#include <QtGlobal>

#include "common/debug_log.h"

namespace orv {

// Marked for the translators; the switch names stay as typed.
const char kUsageText[] = QT_TRANSLATE_NOOP(
    "StartupOptions",
    "Usage: OrvaneWin [-demo] [-console] [-debug] [-debug_packet] [-debug_file]\n"
    "Delivers the swings of an Orvane X sensor to the E6 golf simulator.\n"
    "\n"
    "  -demo          an in-process demo sensor that swings by itself\n"
    "  -console       no window: states and one line per shot on standard output\n"
    "  -debug         log lines on standard output\n"
    "  -debug_packet  sensor frames and simulator messages on standard output\n"
    "  -debug_file    with -debug or -debug_packet: the log goes to log.txt\n"
    "  -h, --help     this text\n"
    "  --version      the program's version\n"
    "\n"
    "Settings: $XDG_CONFIG_HOME/Orvane X/settings.ini (section [E6], key Host:\n"
    "the computer running the simulator; empty for this computer).\n");

StartupOptions ParseStartupOptions(int argc, const char* const* argv) {
    StartupOptions options;
    for (int i = 0; i < argc; ++i) {
        const char* arg = argv[i];
        if (arg == nullptr) {
            continue;
        }
        if (std::strcmp(arg, "-debug") == 0) {
            options.debug = true;
        } else if (std::strcmp(arg, "-debug_packet") == 0) {
            options.debugPacket = true;
        } else if (std::strcmp(arg, "-debug_file") == 0) {
            options.debugFile = true;
        } else if (std::strcmp(arg, "-demo") == 0) {
            options.demo = true;
        } else if (std::strcmp(arg, "-console") == 0) {
            options.console = true;
        } else if (std::strcmp(arg, "-h") == 0 || std::strcmp(arg, "--help") == 0) {
            options.help = true;
        } else if (std::strcmp(arg, "--version") == 0) {
            options.version = true;
        } else if (std::strcmp(arg, "-export_history") == 0 && i + 1 < argc &&
                   argv[i + 1] != nullptr) {
            options.exportHistory = argv[++i];
        }
    }
    return options;
}

bool ApplyStartupOptions(const StartupOptions& options) {
    if (!options.debug && !options.debugPacket) {
        return true;
    }
    ShowLog(options.debug, options.debugPacket);
    if (!options.debugFile) {
        return true;
    }
    // Redirecting the descriptor keeps stdout usable when the file cannot be
    // opened, where reopening the stream would have closed it.
    const int fd = open("log.txt", O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
    if (fd < 0) {
        LOG_ERROR("open error:0x%x\n", static_cast<unsigned>(errno));
        return false;
    }
    std::fflush(stdout);
    const bool redirected = dup2(fd, STDOUT_FILENO) >= 0;
    if (!redirected) {
        LOG_ERROR("dup2 error:0x%x\n", static_cast<unsigned>(errno));
    }
    close(fd);
    // Line-buffered so the file can be followed while the program runs.
    std::setvbuf(stdout, nullptr, _IOLBF, BUFSIZ);
    return redirected;
}

}  // namespace orv
