// The stand-in simulator as a program: its command line, what it prints, and
// its clean end on SIGTERM.
#include <poll.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <vector>

#include "simulator/e6_trusim_client.h"
#include "simulator/trusim_messages.h"
#include "tests/support/test_support.h"

namespace {

using namespace std::chrono_literals;

class EmulatorProgram {
public:
    explicit EmulatorProgram(const std::vector<std::string>& arguments) {
        int out[2];
        if (::pipe(out) != 0) {
            return;
        }
        std::vector<std::string> all{TRUSIM_EMULATOR_PATH};
        all.insert(all.end(), arguments.begin(), arguments.end());
        std::vector<char*> argv;
        for (std::string& a : all) {
            argv.push_back(a.data());
        }
        argv.push_back(nullptr);
        pid_ = ::fork();
        if (pid_ == 0) {
            ::dup2(out[1], STDOUT_FILENO);
            ::close(out[0]);
            ::close(out[1]);
            ::execv(argv[0], argv.data());
            ::_exit(127);
        }
        ::close(out[1]);
        out_ = out[0];
    }

    ~EmulatorProgram() {
        if (pid_ > 0) {
            ::kill(pid_, SIGKILL);
            ::waitpid(pid_, nullptr, 0);
        }
        if (out_ >= 0) {
            ::close(out_);
        }
    }

    // The next line of standard output, without its newline; empty after the time limit.
    std::string ReadLine(std::chrono::milliseconds limit = 10s) {
        const auto deadline = std::chrono::steady_clock::now() + limit;
        while (true) {
            const size_t end = pending_.find('\n');
            if (end != std::string::npos) {
                std::string line = pending_.substr(0, end);
                pending_.erase(0, end + 1);
                return line;
            }
            const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
                deadline - std::chrono::steady_clock::now());
            pollfd wait{out_, POLLIN, 0};
            if (left.count() <= 0 || ::poll(&wait, 1, static_cast<int>(left.count())) <= 0) {
                return {};
            }
            char buffer[512];
            const ssize_t got = ::read(out_, buffer, sizeof buffer);
            if (got <= 0) {
                return {};
            }
            pending_.append(buffer, static_cast<size_t>(got));
        }
    }

    // Exit code after SIGTERM, or -1 when it did not end by itself.
    int Terminate() {
        ::kill(pid_, SIGTERM);
        return Wait();
    }

    int Wait() {
        int status = 0;
        const bool ended =
            orv::test::Eventually([&] { return ::waitpid(pid_, &status, WNOHANG) == pid_; }, 10s);
        if (!ended) {
            return -1;
        }
        pid_ = -1;
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

private:
    pid_t pid_ = -1;
    int out_ = -1;
    std::string pending_;
};

TEST(TruSimEmulatorProgram, PrintsConnectionsAndOneLinePerShotAndEndsOnSigterm) {
    EmulatorProgram program({"--port", "0", "--bind", "127.0.0.1"});
    const std::string listening = program.ReadLine();
    const std::string prefix = "trusim-emulator listening on 127.0.0.1:";
    ASSERT_EQ(listening.rfind(prefix, 0), 0u) << listening;
    const int port = std::stoi(listening.substr(prefix.size()));

    E6TruSimClient client;
    client.Init("127.0.0.1", port);
    EXPECT_EQ(program.ReadLine(), "client connected from 127.0.0.1");
    EXPECT_EQ(program.ReadLine(), "authenticated");
    EXPECT_EQ(program.ReadLine(), "armed, 150.0 yards to the pin");
    ASSERT_TRUE(orv::test::Eventually([&] { return client.GetArmState() == 0; }));

    E6BallData ball;
    ball.BackSpin = 2600.0;
    ball.BallSpeed = 139.12000179290771;
    ball.LaunchAngle = 11.87999980866909;
    ball.LaunchDirection = -2.0;
    ball.SideSpin = -350.0;
    ASSERT_TRUE(client.SendTruSimMessage(E6_GetBallDataJson(ball)));
    ASSERT_TRUE(client.SendTruSimMessage(E6_GetClubDataJson(E6_MakeClubData(94.0, -2.0, 1.0))));
    ASSERT_TRUE(client.SendTruSimMessage(E6_GetMiscDataJson(E6_MakeMiscData(0.2, true, 0))));
    ASSERT_TRUE(client.SendTruSimMessage(E6_GetSendShotJson()));
    EXPECT_EQ(program.ReadLine(),
              "Shot 1: Driver, ball speed 139.12, launch angle 11.88, direction -2.00, back spin "
              "2600, side spin -350");
    client.Stop();
    EXPECT_EQ(program.ReadLine(), "client disconnected");

    EXPECT_EQ(program.Terminate(), 0);
    EXPECT_EQ(program.ReadLine(), "trusim-emulator stopped");
}

TEST(TruSimEmulatorProgram, RefusesABadCommandLine) {
    for (const std::vector<std::string>& arguments :
         {std::vector<std::string>{"--port", "x"},
          {"--port", "70000"},
          {"--bind"},
          {"-v"},
          {"--bind", "not-an-address", "--port", "0"}}) {
        EmulatorProgram program(arguments);
        EXPECT_NE(program.Wait(), 0) << arguments[0];
    }
}

}  // namespace
