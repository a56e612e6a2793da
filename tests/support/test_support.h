// Shared helpers for the test suites: waiting on conditions, capturing the
// process's standard output, temporary folders.
#pragma once

#include <chrono>
#include <csignal>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

namespace orv::test {

// Polls `condition` until it holds or `timeout` passes; never a bare sleep.
bool Eventually(const std::function<bool()>& condition,
                std::chrono::milliseconds timeout = std::chrono::seconds(10),
                std::chrono::milliseconds interval = std::chrono::milliseconds(5));

// Redirects file descriptor 1 into a temporary file for its lifetime.
class StdoutCapture {
public:
    StdoutCapture();
    ~StdoutCapture();
    StdoutCapture(const StdoutCapture&) = delete;
    StdoutCapture& operator=(const StdoutCapture&) = delete;

    // Everything written so far (stdout is flushed first).
    std::string Text() const;

private:
    int savedFd_ = -1;
    std::filesystem::path file_;
};

// Debug log on and standard output captured, for the life of the object. On
// a test failure the captured text goes to standard error, where it is seen.
class LogCapture {
public:
    LogCapture();
    ~LogCapture();
    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;

    std::string Text() const { return capture_.Text(); }

private:
    StdoutCapture capture_;
};

// A fresh folder under the system temporary folder, removed with the object.
class TempDir {
public:
    TempDir();
    ~TempDir();
    TempDir(const TempDir&) = delete;
    TempDir& operator=(const TempDir&) = delete;

    const std::filesystem::path& path() const { return path_; }

private:
    std::filesystem::path path_;
};

// A program started by posix_spawn, not fork: a fork copies this process's
// threads, which the thread sanitizer refuses. Ended (SIGTERM) and reaped with
// the object. `argv[0]` is looked up on PATH.
class ChildProcess {
public:
    explicit ChildProcess(const std::vector<std::string>& argv,
                          const std::filesystem::path& folder = {},
                          const std::filesystem::path& output = {});
    ~ChildProcess() { End(SIGTERM); }
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    bool Started() const { return pid_ > 0; }
    // Sends `signal` and waits for the program to end.
    void End(int signal);

private:
    int pid_ = 0;
};

// Number of times `needle` occurs in `haystack`.
size_t CountOf(const std::string& haystack, const std::string& needle);

// Threads of this process (only those named `name`, when given), their names
// for failure messages, and open descriptors.
int ThreadCount(const std::string& name = {});
std::string ThreadNames();
int OpenFdCount();

}  // namespace orv::test
