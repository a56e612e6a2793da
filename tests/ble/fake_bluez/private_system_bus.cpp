#include "tests/ble/fake_bluez/private_system_bus.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>

namespace orv::test {

namespace {

constexpr const char* kAddressVariable = "DBUS_SYSTEM_BUS_ADDRESS";

// No <servicedir>: nothing is ever activated. Every message and name is allowed.
std::string Configuration(const std::string& socket) {
    return "<busconfig><listen>unix:path=" + socket +
           "</listen><auth>EXTERNAL</auth><policy context=\"default\"><allow user=\"*\"/>"
           "<allow own=\"*\"/><allow send_destination=\"*\"/><allow receive_sender=\"*\"/>"
           "</policy></busconfig>\n";
}

}  // namespace

PrivateSystemBus::PrivateSystemBus() {
    const std::string config = (dir_.path() / "system.conf").string();
    std::ofstream(config) << Configuration((dir_.path() / "system_bus_socket").string());
    int fds[2];
    if (pipe(fds) != 0) {
        return;
    }
    // Built before fork: the child of a threaded process may not allocate.
    const std::string configArg = "--config-file=" + config;
    const std::string log = (dir_.path() / "dbus-daemon.log").string();
    pid_ = fork();
    if (pid_ == 0) {
        prctl(PR_SET_PDEATHSIG, SIGKILL);  // never outlives a crashed test
        dup2(fds[1], STDOUT_FILENO);
        // Its complaints (no fd limit raise without privileges) stay in its folder.
        const int logFd = open(log.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
        if (logFd >= 0) {
            dup2(logFd, STDERR_FILENO);
        }
        execlp("dbus-daemon", "dbus-daemon", configArg.c_str(), "--print-address", "--nofork",
               "--nopidfile", static_cast<char*>(nullptr));
        _exit(127);
    }
    close(fds[1]);
    // Printed once it listens; the pipe ends if it cannot start.
    FILE* printed = fdopen(fds[0], "r");
    char line[512] = "";
    const bool started = pid_ > 0 && fgets(line, sizeof line, printed) != nullptr;
    fclose(printed);
    if (!started) {
        Kill();
        return;
    }
    address_ = std::string(line, std::strcspn(line, "\n"));
    if (const char* previous = std::getenv(kAddressVariable)) {
        previousAddress_ = previous;
    }
    setenv(kAddressVariable, address_.c_str(), 1);
}

PrivateSystemBus::~PrivateSystemBus() {
    Kill();
    if (previousAddress_) {
        setenv(kAddressVariable, previousAddress_->c_str(), 1);
    } else if (!address_.empty()) {
        unsetenv(kAddressVariable);
    }
}

void PrivateSystemBus::Kill() {
    if (pid_ > 0) {
        kill(pid_, SIGTERM);
        waitpid(pid_, nullptr, 0);
        pid_ = -1;
    }
}

}  // namespace orv::test
