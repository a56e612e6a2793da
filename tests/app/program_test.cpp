// The OrvaneWin program as a user starts it: console mode with the demo
// sensor, its switches, its quit signals and its single instance.
#include <fcntl.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "tests/support/file_text.h"
#include "tests/support/test_support.h"

namespace orv::test {
namespace {

using namespace std::chrono_literals;

// One run of the program in its own working, settings and runtime folders.
class Program {
public:
    Program(const TempDir& home, std::vector<std::string> args,
            const std::string& outputName = "out.txt")
        : output_(home.path() / outputName) {
        pid_ = fork();
        if (pid_ == 0) {
            const int out = open(output_.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
            dup2(out, STDOUT_FILENO);
            dup2(out, STDERR_FILENO);
            if (chdir(home.path().c_str()) != 0) {
                _exit(126);
            }
            setenv("HOME", home.path().c_str(), 1);
            setenv("XDG_CONFIG_HOME", (home.path() / "config").c_str(), 1);
            setenv("XDG_RUNTIME_DIR", home.path().c_str(), 1);
            unsetenv("DISPLAY");
            unsetenv("WAYLAND_DISPLAY");
            std::vector<char*> argv{const_cast<char*>(ORVANE_PROGRAM)};
            for (std::string& arg : args) {
                argv.push_back(arg.data());
            }
            argv.push_back(nullptr);
            execv(ORVANE_PROGRAM, argv.data());
            _exit(127);
        }
    }
    ~Program() {
        if (pid_ > 0 && !exited_) {
            kill(pid_, SIGKILL);
            waitpid(pid_, nullptr, 0);
        }
    }
    std::string Output() const { return ReadFileText(output_); }
    bool WaitForOutput(const std::string& text) const {
        return Eventually([&] { return Output().find(text) != std::string::npos; }, 20s);
    }
    // The exit status, or -1 when the program did not end in time.
    int Stop(int signal) {
        kill(pid_, signal);
        return Wait();
    }
    int Wait() {
        int status = 0;
        const bool ended = Eventually([&] { return waitpid(pid_, &status, WNOHANG) == pid_; }, 10s);
        exited_ = ended;
        return ended && WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

private:
    std::filesystem::path output_;
    pid_t pid_ = -1;
    bool exited_ = false;
};

TEST(Program, ConsoleModeRunsTheDemoAndQuitsCleanlyOnEitherSignal) {
    for (const int signal : {SIGINT, SIGTERM}) {
        TempDir home;
        Program program(home, {"-console", "-demo"});
        ASSERT_TRUE(program.WaitForOutput("Sensor: connected, firmware 1.2.0\n"))
            << program.Output();
        EXPECT_EQ(program.Stop(signal), 0) << program.Output();
        const std::string output = program.Output();
        EXPECT_NE(output.find("Shutting down.\n"), std::string::npos);
        // Without a debug switch nothing of the log shows.
        EXPECT_EQ(output.find("] ["), std::string::npos) << output;
        EXPECT_EQ(output.find("[D] "), std::string::npos);
        EXPECT_TRUE(std::filesystem::exists(home.path() / "config" / "Orvane X"));
        EXPECT_FALSE(std::filesystem::exists(home.path() / "log.txt"));
    }
}

TEST(Program, DebugSwitchesChooseTaggedLinesDumpsAndTheLogFile) {
    {
        TempDir home;
        Program program(home, {"-console", "-demo", "-debug"});
        ASSERT_TRUE(program.WaitForOutput("] [Orvane::OrvManager::HandleFWVersion("));
        EXPECT_EQ(program.Stop(SIGTERM), 0);
        const std::string output = program.Output();
        EXPECT_NE(output.find("COrvaneWinApp::LoadLanguage("), std::string::npos) << output;
        EXPECT_NE(output.find("Main Language: "), std::string::npos);
        EXPECT_EQ(output.find("[D] >> "), std::string::npos);
        EXPECT_FALSE(std::filesystem::exists(home.path() / "log.txt"));
    }
    {
        TempDir home;
        Program program(home, {"-console", "-demo", "-debug_packet"});
        ASSERT_TRUE(program.WaitForOutput("Recv Data: ORV_DATA_FW_VERSION\n"));
        EXPECT_EQ(program.Stop(SIGTERM), 0);
        const std::string output = program.Output();
        EXPECT_NE(output.find("[D] >> 12 00 12\n"), std::string::npos);
        EXPECT_EQ(output.find("] [Orvane::"), std::string::npos);  // no tagged lines
    }
    {
        TempDir home;
        Program program(home, {"-console", "-demo", "-debug_file"});  // alone: nothing
        ASSERT_TRUE(program.WaitForOutput("Sensor: connected"));
        EXPECT_EQ(program.Stop(SIGTERM), 0);
        EXPECT_FALSE(std::filesystem::exists(home.path() / "log.txt"));
    }
    {
        TempDir home;
        Program program(home, {"-debug_file", "-console", "-demo", "-debug"});
        ASSERT_TRUE(Eventually(
            [&] {
                return ReadFileText(home.path() / "log.txt").find("FW version: 1.2.0") !=
                       std::string::npos;
            },
            20s));
        EXPECT_EQ(program.Stop(SIGTERM), 0);
        EXPECT_EQ(program.Output().find("] [Orvane::"), std::string::npos);
    }
}

}  // namespace
}  // namespace orv::test
