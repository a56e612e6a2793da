#include "app/quit_signals.h"

#include <fcntl.h>
#include <signal.h>
#include <unistd.h>

#include <QSocketNotifier>

#include "common/debug_log.h"

namespace orv {

namespace {

// The handler may only write to this pipe; the event loop reads it.
int g_quitPipe[2] = {-1, -1};

void OnQuitSignal(int /*signal*/) {
    const char byte = 1;
    [[maybe_unused]] const ssize_t ignored = write(g_quitPipe[1], &byte, 1);
}

}  // namespace

QuitSignals::QuitSignals(QObject* parent) : QObject(parent) {
    if (pipe2(g_quitPipe, O_CLOEXEC | O_NONBLOCK) != 0) {
        LOG_ERROR("pipe2 error:0x%x\n", errno);
        return;
    }
    notifier_ = new QSocketNotifier(g_quitPipe[0], QSocketNotifier::Read, this);
    connect(notifier_, &QSocketNotifier::activated, this, [this] {
        char bytes[16];
        while (read(g_quitPipe[0], bytes, sizeof bytes) > 0) {
        }
        emit QuitRequested();
    });
    struct sigaction action {};
    action.sa_handler = OnQuitSignal;
    sigemptyset(&action.sa_mask);
    action.sa_flags = SA_RESTART;
    sigaction(SIGINT, &action, nullptr);
    sigaction(SIGTERM, &action, nullptr);
}

QuitSignals::~QuitSignals() {
    signal(SIGINT, SIG_DFL);
    signal(SIGTERM, SIG_DFL);
    delete notifier_;
    notifier_ = nullptr;
    for (int& fd : g_quitPipe) {
        if (fd >= 0) {
            close(fd);
            fd = -1;
        }
    }
}

}  // namespace orv
