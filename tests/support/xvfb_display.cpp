#include "tests/support/xvfb_display.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>

namespace orv::test {

XvfbDisplay::XvfbDisplay(const std::string& screen) {
    int fds[2];
    if (pipe(fds) != 0) {
        return;
    }
    pid_ = fork();
    if (pid_ == 0) {
        close(fds[0]);
        // The server ends with the test process, even when the test crashes,
        // and must not hold the test's output pipes open.
        prctl(PR_SET_PDEATHSIG, SIGTERM);
        const int devNull = open("/dev/null", O_RDWR);
        if (devNull >= 0) {
            dup2(devNull, STDIN_FILENO);
            dup2(devNull, STDOUT_FILENO);
            dup2(devNull, STDERR_FILENO);
        }
        const std::string fd = std::to_string(fds[1]);
        execlp("Xvfb", "Xvfb", "-displayfd", fd.c_str(), "-screen", "0", screen.c_str(),
               "-nolisten", "tcp", "-noreset", static_cast<char*>(nullptr));
        _exit(127);
    }
    close(fds[1]);
    // Xvfb writes the display number it chose once it accepts connections.
    std::string number;
    pollfd waiter{fds[0], POLLIN, 0};
    while (pid_ > 0 && poll(&waiter, 1, 20000) > 0) {
        char c;
        if (read(fds[0], &c, 1) != 1 || c == '\n') {
            break;
        }
        number.push_back(c);
    }
    close(fds[0]);
    if (!number.empty()) {
        setenv("DISPLAY", (":" + number).c_str(), 1);
        setenv("QT_QPA_PLATFORM", "xcb", 1);
    }
}

XvfbDisplay::~XvfbDisplay() {
    if (pid_ > 0) {
        kill(pid_, SIGTERM);
        waitpid(pid_, nullptr, 0);
    }
}

}  // namespace orv::test
