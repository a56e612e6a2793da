// trusim-emulator [--port N] [--bind ADDR]: a stand-in golf simulator for
// running the program without one. Prints what happens, one line per shot.
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "tools/trusim-emulator/trusim_emulator.h"

namespace {

void Usage(std::FILE* to) {
    std::fprintf(to,
                 "usage: trusim-emulator [--port N] [--bind ADDR]\n"
                 "  --port N     TCP port to listen on (default 2483, 0 for any free port)\n"
                 "  --bind ADDR  IPv4 address to listen on (default 0.0.0.0, every interface)\n"
                 "  -h, --help   this text\n"
                 "  --version    the version\n");
}

bool ParseArguments(int argc, char** argv, orv::TruSimEmulatorOptions* options) {
    for (int i = 1; i < argc; ++i) {
        const std::string argument = argv[i];
        if ((argument == "--port" || argument == "--bind") && i + 1 < argc) {
            const char* value = argv[++i];
            if (argument == "--bind") {
                options->bindAddress = value;
                continue;
            }
            char* end = nullptr;
            const long port = std::strtol(value, &end, 10);
            if (*value == '\0' || *end != '\0' || port < 0 || port > 65535) {
                return false;
            }
            options->port = static_cast<int>(port);
        } else {
            return false;
        }
    }
    return true;
}

void PrintLine(const std::string& line) {
    std::printf("%s\n", line.c_str());
    std::fflush(stdout);
}

}  // namespace

int main(int argc, char** argv) {
    for (int i = 1; i < argc; ++i) {
        if (std::strcmp(argv[i], "-h") == 0 || std::strcmp(argv[i], "--help") == 0) {
            Usage(stdout);
            return 0;
        }
        if (std::strcmp(argv[i], "--version") == 0) {
            std::printf("trusim-emulator (Orvane X) %s\n", ORVANE_APP_VERSION);
            return 0;
        }
    }
    orv::TruSimEmulatorOptions options;
    if (!ParseArguments(argc, argv, &options)) {
        Usage(stderr);
        return 2;
    }
    // Blocked before any thread starts, so only sigwait below sees them.
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGINT);
    sigaddset(&signals, SIGTERM);
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);

    orv::TruSimEmulator emulator(options);
    emulator.SetReporter(PrintLine);
    if (!emulator.Start()) {
        return 1;
    }
    PrintLine("trusim-emulator listening on " + options.bindAddress + ":" +
              std::to_string(emulator.Port()));
    int received = 0;
    sigwait(&signals, &received);
    emulator.Stop();
    PrintLine("trusim-emulator stopped");
    return 0;
}
