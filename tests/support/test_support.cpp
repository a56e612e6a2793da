#include "tests/support/test_support.h"

#include <fcntl.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <thread>

#include <gtest/gtest.h>

#include "common/debug_log.h"

namespace orv::test {

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
    std::ifstream in(file_, std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

LogCapture::LogCapture() { ShowLog(true, false); }

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
    if (needle.empty()) {
        return 0;
    }
    size_t count = 0;
    for (size_t at = haystack.find(needle); at != std::string::npos;
         at = haystack.find(needle, at + needle.size())) {
        ++count;
    }
    return count;
}

}  // namespace orv::test
