#include "common/debug_log.h"

#include <gtest/gtest.h>

#include <regex>
#include <string>

#include "common/clock.h"
#include "tests/support/test_support.h"

namespace {

struct LogSwitches : ::testing::Test {
    ~LogSwitches() override { ShowLog(false, false); }
};

TEST_F(LogSwitches, GatingAndPrefixes) {
    orv::test::StdoutCapture out;
    EXPECT_TRUE(ShowLog(false, true));
    PrintLog("Orvane::OrvManager::Start", 10, "Start\n");
    PrintErr("E6TruSimClient::HandleAuth", 11, "Auth failed.\n");
    PrintRaw("[D] >> %s\n", "12 00 12");
    EXPECT_FALSE(IsShowLog());

    EXPECT_FALSE(ShowLog(true, false));
    EXPECT_TRUE(IsShowLog());
    const long long before = WallClockMs();
    PrintLog("Orvane::OrvManager::Start", 10, "Start\n");
    PrintErr("E6TruSimClient::HandleAuth", 11, "Auth failed.\n");
    PrintRaw("[D] >> %s\n", "hidden");
    const long long after = WallClockMs();

    const std::string text = out.Text();
    const std::regex expected(
        "\\[(\\d+)\\] \\[D\\] >> 12 00 12\n"
        "\\[(\\d+)\\] \\[Orvane::OrvManager::Start\\(10\\)\\] Start\n"
        "!!! ERROR \\[(\\d+)\\] \\[E6TruSimClient::HandleAuth\\(11\\)\\] Auth failed\\.\n");
    std::smatch match;
    ASSERT_TRUE(std::regex_match(text, match, expected)) << text;
    const long long stamp = std::stoll(match[2]);
    EXPECT_GE(stamp, before);
    EXPECT_LE(stamp, after);
}

TEST_F(LogSwitches, LongMessageIsCutNotRejected) {
    orv::test::StdoutCapture out;
    ShowLog(true, true);
    const std::string huge(50000, 'x');
    PrintLog("Tag", 1, "%s\n", huge.c_str());
    PrintRaw("%s\n", huge.c_str());
    const std::string text = out.Text();
    // 40959 characters of message survive in each; the newline is cut off.
    EXPECT_EQ(orv::test::CountOf(text, std::string(40959, 'x')), 2u);
    EXPECT_EQ(text.find(std::string(40960, 'x')), std::string::npos);
    EXPECT_EQ(text.find('\n'), std::string::npos);
}

// Plain member and free functions show in the log lines other tests pin.
TEST(QualifiedFunctionName, CutsSignaturesDownToTheName) {
    const std::pair<const char*, const char*> cases[] = {
        {"static Orvane::OrvManager* Orvane::OrvManager::GetInstance()",
         "Orvane::OrvManager::GetInstance"},
        {"std::map<int, std::pair<int, int> > Q<A, B>::Get(int)", "Q<A, B>::Get"},
        {"Orvane::OrvManager::StopRecording(int)::<lambda()>", "Orvane::OrvManager::StopRecording"},
        {"void Foo::operator()(int)", "Foo::operator()"},
        {"OrvSettings::LoadSetting", "OrvSettings::LoadSetting"},
        {"", ""},
    };
    for (const auto& [signature, name] : cases) {
        EXPECT_EQ(orv::QualifiedFunctionName(signature), name);
    }
}

}  // namespace
