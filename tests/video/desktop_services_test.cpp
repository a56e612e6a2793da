// The desktop services around the camera: the idle inhibitor against a
// stand-in for systemd-logind on a private bus, and the microphone level
// without a sound server.
#include "video/idle_inhibitor.h"

#include <gtest/gtest.h>
#include <poll.h>
#include <signal.h>
#include <unistd.h>

#include <sdbus-c++/sdbus-c++.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <string>
#include <vector>

#include "common/debug_log.h"
#include "tests/support/test_support.h"
#include "tests/video/video_test_support.h"
#include "video/preview_wnd.h"

namespace {

using namespace std::chrono_literals;

const bool kGui = (orv::test::UseGuiEnvironment(), true);

// A dbus-daemon of our own, stopped with the object.
class PrivateBus {
public:
    PrivateBus() {
        // It forks into the background once listening and prints its address
        // and process id.
        std::FILE* out = popen("dbus-daemon --session --fork --print-address=1 --print-pid=1", "r");
        if (out == nullptr) {
            return;
        }
        char line[512];
        if (std::fgets(line, sizeof line, out) != nullptr) {
            address_ = std::string(line, std::strcspn(line, "\n"));
        }
        if (std::fgets(line, sizeof line, out) != nullptr) {
            pid_ = std::atoi(line);
        }
        pclose(out);
    }
    ~PrivateBus() {
        if (pid_ > 0) {
            kill(pid_, SIGTERM);
        }
    }
    const std::string& address() const { return address_; }

private:
    pid_t pid_ = -1;
    std::string address_;
};

// Answers Inhibit like logind: a pipe whose read end it keeps, so that it
// sees the lock released when the other end closes.
class FakeLogind {
public:
    explicit FakeLogind(const std::string& address)
        : connection_(sdbus::createSessionBusConnectionWithAddress(address)) {
        connection_->requestName("org.freedesktop.login1");
        object_ = sdbus::createObject(*connection_, "/org/freedesktop/login1");
        object_->registerMethod("Inhibit")
            .onInterface("org.freedesktop.login1.Manager")
            .implementedAs([this](const std::string& what, const std::string& who,
                                  const std::string& why, const std::string& mode) {
                int fds[2];
                EXPECT_EQ(pipe(fds), 0);
                std::lock_guard lock(mutex_);
                calls_.push_back(what + "|" + who + "|" + why + "|" + mode);
                held_.push_back(fds[0]);
                return sdbus::UnixFd(fds[1], sdbus::adopt_fd);
            });
        object_->finishRegistration();
        connection_->enterEventLoopAsync();
    }
    ~FakeLogind() {
        connection_->leaveEventLoop();
        for (int fd : held_) {
            close(fd);
        }
    }
    std::vector<std::string> Calls() {
        std::lock_guard lock(mutex_);
        return calls_;
    }
    // True once the last lock handed out has no holder any more.
    bool LastLockReleased() {
        std::lock_guard lock(mutex_);
        if (held_.empty()) {
            return false;
        }
        pollfd check{held_.back(), POLLIN, 0};
        char byte;
        return poll(&check, 1, 0) == 1 && read(held_.back(), &byte, 1) == 0;
    }

private:
    std::unique_ptr<sdbus::IConnection> connection_;
    std::unique_ptr<sdbus::IObject> object_;
    std::mutex mutex_;  // guards calls_ and held_, filled on the bus thread
    std::vector<std::string> calls_;
    std::vector<int> held_;
};

TEST(IdleInhibitorTest, HoldsLogindsIdleLockUntilReleased) {
    PrivateBus bus;
    ASSERT_FALSE(bus.address().empty());
    FakeLogind logind(bus.address());
    IdleInhibitor inhibitor(bus.address());
    EXPECT_TRUE(inhibitor.Acquire("CaptureEngine is recording!"));
    EXPECT_TRUE(inhibitor.Acquire("CaptureEngine is recording!"));  // held once only
    ASSERT_EQ(logind.Calls().size(), 1u);
    EXPECT_EQ(logind.Calls()[0], "idle|Orvane X|CaptureEngine is recording!|block");
    EXPECT_FALSE(logind.LastLockReleased());
    inhibitor.Release();
    EXPECT_FALSE(inhibitor.Active());
    // The bus may still hold its copy of the descriptor for a moment.
    EXPECT_TRUE(orv::test::Eventually([&] { return logind.LastLockReleased(); }));
}

TEST(IdleInhibitorTest, WithoutLogindNothingHappensButOneLine) {
    PrivateBus bus;  // a bus, but nobody owns logind's name on it
    orv::test::StdoutCapture out;
    ShowLog(true, false);
    IdleInhibitor inhibitor(bus.address());
    EXPECT_FALSE(inhibitor.Acquire("why"));
    ShowLog(false, false);
    EXPECT_FALSE(inhibitor.Active());
    EXPECT_EQ(orv::test::CountOf(out.Text(), "No idle inhibitor"), 1u) << out.Text();
}

TEST(IdleInhibitorTest, CaptureManagerHoldsTheLockWhilePreviewing) {
    PrivateBus bus;
    FakeLogind logind(bus.address());
    CaptureSources sources = orv::test::TestSources();
    sources.inhibitorBus = bus.address();
    PreviewWnd preview(sources);
    ASSERT_TRUE(preview.Create(nullptr));
    CaptureManager* capture = preview.GetCaptureManager();
    EXPECT_FALSE(capture->IsPowerRequestActive());
    ASSERT_TRUE(preview.StartPreview(kHideWindow));
    EXPECT_TRUE(capture->IsPowerRequestActive());
    ASSERT_EQ(logind.Calls().size(), 1u);
    EXPECT_EQ(logind.Calls()[0], "idle|Orvane X|CaptureEngine is recording!|block");
    capture->ReleaseEngine();
    EXPECT_FALSE(capture->IsPowerRequestActive());
    // The bus may still hold its copy of the descriptor for a moment.
    EXPECT_TRUE(orv::test::Eventually([&] { return logind.LastLockReleased(); }));
}

TEST(DesktopServicesTest, WithoutSoundServerTheMicrophoneIsLeftAloneWithOneLine) {
    orv::test::StdoutCapture out;
    ShowLog(true, false);
    {
        CaptureManager capture(orv::test::TestSources());
        EXPECT_EQ(capture.SavedMicLevel(), 0.0f);
    }
    ShowLog(false, false);
    EXPECT_EQ(orv::test::CountOf(out.Text(), "No sound server: microphone left alone\n"), 1u)
        << out.Text();
}

}  // namespace
