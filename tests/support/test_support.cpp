#include "tests/support/test_support.h"

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <thread>

#include <gtest/gtest.h>

#include "common/debug_log.h"
#include "tests/support/file_text.h"

namespace orv::test {

ChildProcess::ChildProcess(const std::vector<std::string>& argv,
                           const std::filesystem::path& folder,
                           const std::filesystem::path& output) {
    std::vector<char*> args;
    for (const std::string& arg : argv) {
        args.push_back(const_cast<char*>(arg.c_str()));
    }
    args.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    if (!folder.empty()) {
        posix_spawn_file_actions_addchdir_np(&actions, folder.c_str());
    }
    if (!output.empty()) {
        posix_spawn_file_actions_addopen(&actions, 1, output.c_str(), O_WRONLY | O_CREAT, 0600);
    }
    pid_t pid = 0;
    if (posix_spawnp(&pid, args[0], &actions, nullptr, args.data(), environ) == 0) {
        pid_ = pid;
    }
    posix_spawn_file_actions_destroy(&actions);
}

void ChildProcess::End(int signal) {
    if (pid_ > 0) {
        kill(pid_, signal);
        waitpid(pid_, nullptr, 0);
        pid_ = 0;
    }
}

bool Eventually(const std::function<bool()>& condition, std::chrono::milliseconds timeout,
                std::chrono::milliseconds interval) {
    const auto deadline = std::chrono::steady_clock::now() + timeout;
    while (true) {
        if (condition()) {
            return true;
        }
        if (std::chrono::steady_clock::now() >= deadline) {
            return false;
        }
        std::this_thread::sleep_for(interval);
    }
}

StdoutCapture::StdoutCapture() {
    char name[] = "/tmp/orvane-stdout-XXXXXX";
    const int fd = mkstemp(name);
    file_ = name;
    std::fflush(stdout);
    savedFd_ = dup(STDOUT_FILENO);
    dup2(fd, STDOUT_FILENO);
    close(fd);
}

StdoutCapture::~StdoutCapture() {
    std::fflush(stdout);
    dup2(savedFd_, STDOUT_FILENO);
    close(savedFd_);
    std::error_code ignored;
    std::filesystem::remove(file_, ignored);
}

std::string StdoutCapture::Text() const {
    std::fflush(stdout);
    return ReadFileText(file_);
}

LogCapture::LogCapture() {
    ShowLog(true, false);
}

LogCapture::~LogCapture() {
    ShowLog(false, false);
    if (::testing::Test::HasFailure()) {
        std::fprintf(stderr, "%s", Text().c_str());
    }
}

TempDir::TempDir() {
    std::string pattern = (std::filesystem::temp_directory_path() / "orvane-test-XXXXXX").string();
    if (mkdtemp(pattern.data()) == nullptr) {
        std::abort();
    }
    path_ = pattern;
}

TempDir::~TempDir() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
}

size_t CountOf(const std::string& haystack, const std::string& needle) {
    size_t count = 0;
    for (size_t at = haystack.find(needle); !needle.empty() && at != std::string::npos;
         at = haystack.find(needle, at + needle.size())) {
        ++count;
    }
    return count;
}

namespace {

std::string Comm(const std::filesystem::path& task) {
    const std::string name = ReadFileText(task / "comm");
    return name.substr(0, name.find('\n'));
}

}  // namespace

int ThreadCount(const std::string& name) {
    int count = 0;
    for (const auto& task : std::filesystem::directory_iterator("/proc/self/task")) {
        count += name.empty() || Comm(task.path()) == name;
    }
    return count;
}

std::string ThreadNames() {
    std::string names;
    for (const auto& task : std::filesystem::directory_iterator("/proc/self/task")) {
        names += Comm(task.path()) + ";";
    }
    return names;
}

int OpenFdCount() {
    int count = 0;
    for ([[maybe_unused]] const auto& fd : std::filesystem::directory_iterator("/proc/self/fd")) {
        ++count;
    }
    return count;
}

}  // namespace orv::test

// Sanitizer settings of every test program, in the one object each of them links.
//
// GLib and libdbus (loaded by Qt and GStreamer) keep allocations for the whole
// process and never free them: not leaks of ours. Pipelines or sessions left
// behind are caught by the descriptor, thread and memory counts of the tests.
extern "C" __attribute__((visibility("default"), used)) const char* __lsan_default_suppressions() {
    return "leak:libglib-2.0.so\n"
           "leak:libdbus-1.so\n";
}

// Qt, GLib and GStreamer are not built with the thread sanitizer: the locking
// between their own threads (X event reader, D-Bus connection, streaming
// threads) is invisible to it. Races in our code stay reported.
extern "C" __attribute__((visibility("default"), used)) const char* __tsan_default_options() {
    return "ignore_noninstrumented_modules=1";
}

extern "C" __attribute__((visibility("default"), used)) const char* __tsan_default_suppressions() {
    return "called_from_lib:libQt6Core.so.6\n"
           "called_from_lib:libQt6Gui.so.6\n"
           "called_from_lib:libQt6DBus.so.6\n"
           "called_from_lib:libQt6XcbQpa.so.6\n"
           "race:libQt6Core.so.6\n"
           "race:libQt6DBus.so.6\n"
           "race:libQt6XcbQpa.so.6\n"
           "called_from_lib:libxcb.so.1\n"
           "called_from_lib:libdbus-1.so.3\n"
           "mutex:libxcb.so.1\n"
           "mutex:libX11.so.6\n";
}
