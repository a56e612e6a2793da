#include "bench/session/simulator_process.h"

#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "tools/trusim-emulator/trusim_emulator.h"

namespace orv::bench {

namespace {

void WriteLine(int fd, const std::string& line) {
    // Lines are far below PIPE_BUF, so writes from several threads never interleave.
    const std::string text = line + "\n";
    if (write(fd, text.data(), text.size()) != static_cast<ssize_t>(text.size())) {
        std::perror("simulator event pipe");
    }
}

}  // namespace

int64_t SimulatorProcess::Now() {
    return std::chrono::duration_cast<std::chrono::nanoseconds>(
               std::chrono::steady_clock::now().time_since_epoch())
        .count();
}

SimulatorProcess::SimulatorProcess(std::chrono::milliseconds rearmDelay) {
    int commands[2], events[2];
    if (pipe(commands) != 0 || pipe(events) != 0) {
        std::perror("pipe");
        return;
    }
    child_ = fork();
    if (child_ == 0) {
        close(commands[1]);
        close(events[0]);
        prctl(PR_SET_PDEATHSIG, SIGTERM);
        Serve(commands[0], events[1], rearmDelay);
        _exit(0);
    }
    close(commands[0]);
    close(events[1]);
    commands_ = commands[1];
    events_ = events[0];
    if (child_ < 0) {
        std::perror("fork");
        return;
    }
    reader_ = std::thread([this] { ReadEvents(); });
}

SimulatorProcess::~SimulatorProcess() {
    if (commands_ >= 0) {
        close(commands_);  // end of commands: the child stops and exits
    }
    if (child_ > 0) {
        waitpid(child_, nullptr, 0);
    }
    if (reader_.joinable()) {
        reader_.join();
    }
    if (events_ >= 0) {
        close(events_);
    }
}

void SimulatorProcess::Serve(int commands, int events, std::chrono::milliseconds rearmDelay) {
    TruSimEmulatorOptions options;
    options.bindAddress = "127.0.0.1";
    options.port = 0;
    options.rearmDelay = rearmDelay;
    TruSimEmulator emulator(options);
    emulator.SetReporter([events](const std::string& line) {
        const int64_t now = Now();
        if (line.rfind("Shot ", 0) == 0) {
            WriteLine(events, "shot " + std::to_string(now));
        } else if (line == "authenticated") {
            WriteLine(events, "auth " + std::to_string(now));
        }
    });
    FILE* in = fdopen(commands, "r");
    char command[32];
    while (in != nullptr && std::fgets(command, sizeof command, in) != nullptr) {
        if (std::strcmp(command, "start\n") == 0) {
            const bool started = emulator.Start();
            WriteLine(events, "started " + std::to_string(started ? Now() : 0) + " " +
                                  std::to_string(emulator.Port()));
        } else if (std::strcmp(command, "stop\n") == 0) {
            emulator.Stop();
            WriteLine(events, "stopped " + std::to_string(Now()));
        }
    }
    emulator.Stop();
}

void SimulatorProcess::ReadEvents() {
    FILE* in = fdopen(dup(events_), "r");
    char line[128];
    while (in != nullptr && std::fgets(line, sizeof line, in) != nullptr) {
        char kind[16] = {};
        long long stamp = 0;
        int port = 0;
        if (std::sscanf(line, "%15s %lld %d", kind, &stamp, &port) < 2) {
            continue;
        }
        const std::string name = kind;
        Event* event = name == "shot"      ? &shots_
                       : name == "auth"    ? &authentications_
                       : name == "started" ? &started_
                       : name == "stopped" ? &stopped_
                                           : nullptr;
        if (event == nullptr) {
            continue;
        }
        {
            std::lock_guard<std::mutex> lock(mutex_);
            ++event->count;
            event->stamp = stamp;
            if (port != 0) {
                port_ = port;
            }
        }
        changed_.notify_all();
    }
    if (in != nullptr) {
        std::fclose(in);
    }
}

int64_t SimulatorProcess::WaitAfter(const Event SimulatorProcess::*event, int count,
                                    std::chrono::milliseconds timeout) const {
    std::unique_lock<std::mutex> lock(mutex_);
    if (!changed_.wait_for(lock, timeout, [&] { return (this->*event).count > count; })) {
        return 0;
    }
    return (this->*event).stamp;
}

int64_t SimulatorProcess::Issue(const std::string& command, const Event SimulatorProcess::*ack) {
    const int before = [&] {
        std::lock_guard<std::mutex> lock(mutex_);
        return (this->*ack).count;
    }();
    const std::string line = command + "\n";
    if (write(commands_, line.data(), line.size()) != static_cast<ssize_t>(line.size())) {
        return 0;
    }
    return WaitAfter(ack, before, std::chrono::seconds(5));
}

int64_t SimulatorProcess::Start() {
    return Issue("start", &SimulatorProcess::started_);
}

bool SimulatorProcess::Stop() {
    return Issue("stop", &SimulatorProcess::stopped_) != 0;
}

int SimulatorProcess::Port() const {
    std::lock_guard<std::mutex> lock(mutex_);
    return port_;
}

int SimulatorProcess::Shots() const {
    std::lock_guard<std::mutex> lock(mutex_);
    return shots_.count;
}

int64_t SimulatorProcess::WaitShotAfter(int count, std::chrono::milliseconds timeout) const {
    return WaitAfter(&SimulatorProcess::shots_, count, timeout);
}

int SimulatorProcess::Authentications() const {
    std::lock_guard<std::mutex> lock(mutex_);
    return authentications_.count;
}

int64_t SimulatorProcess::WaitAuthenticationAfter(int count,
                                                  std::chrono::milliseconds timeout) const {
    return WaitAfter(&SimulatorProcess::authentications_, count, timeout);
}

}  // namespace orv::bench
