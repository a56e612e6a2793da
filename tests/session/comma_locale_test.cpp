// Under a locale that writes decimal commas, numbers meant for a machine keep
// the decimal point: the simulator's texts, the log, and a whole shot.
#include <clocale>
#include <cstdlib>
#include <optional>

#include "common/debug_log.h"
#include "simulator/trusim_messages.h"
#include "tests/common/env_var.h"
#include "tests/session/session_fixture.h"

namespace orv::test {
namespace {

using namespace std::chrono_literals;

// de_DE generated into a temporary folder, once for the program (localedef
// is slow): the machine's locales stay as they are.
class CommaLocale : public SessionTest {
protected:
    static void SetUpTestSuite() {
        locales.emplace();
        locpath.emplace("LOCPATH", locales->path().c_str());
        const std::string command = "localedef -i de_DE -f UTF-8 '" +
                                    (locales->path() / "de_DE.UTF-8").string() +
                                    "' >/dev/null 2>&1";
        generated = std::system(command.c_str()) == 0;
    }
    static void TearDownTestSuite() {
        locpath.reset();
        locales.reset();
    }
    void SetUp() override {
        ASSERT_TRUE(generated) << "localedef and the package locales needed";
        // Before any thread starts: setlocale is not safe against threads formatting meanwhile.
        ASSERT_NE(std::setlocale(LC_ALL, "de_DE.UTF-8"), nullptr);
        SessionTest::SetUp();
    }
    void TearDown() override {
        SessionTest::TearDown();
        std::setlocale(LC_ALL, "C");
    }

    static inline std::optional<TempDir> locales;
    static inline std::optional<EnvVar> locpath;
    static inline bool generated = false;
};

TEST_F(CommaLocale, SimulatorTextsLogLinesAndAWholeShotKeepTheDecimalPoint) {
    // Launch angle, direction, ball speed, back spin, side spin.
    EXPECT_EQ(
        E6_GetBallDataJson(E6BallData{14.44, -0.5, 41.25, 2449.81, -350.0}),
        "{\"Type\":\"SetBallData\",\"BallData\":{\"BackSpin\":2449.810, \"BallSpeed\":41.250,\t"
        "\"LaunchAngle\":14.440, \"LaunchDirection\":-0.500, \"SideSpin\":-350.000}}");
    {
        LogCapture log;
        LOG_INFO("%.3f %f\n", 2.5, -0.25);
        EXPECT_EQ(log.Text().substr(log.Text().rfind("] ") + 2), "2.500 -0.250000\n");
    }

    StartManager();
    ASSERT_TRUE(WaitReady());
    sensor->TriggerSwing(DriverSwing());
    ASSERT_TRUE(emulator->WaitForShots(1, 10s));
    EXPECT_EQ(emulator->ProtocolErrors(), 0);
    const Orvane::LastShotInfo sent = manager->GetLastShot();
    const orv::TruSimShot got = emulator->Shots()[0];
    EXPECT_NEAR(got.ballSpeed, sent.ball.BallSpeed, 0.0005);
    EXPECT_NEAR(got.backSpin, sent.ball.BackSpin, 0.0005);
    EXPECT_NEAR(got.clubHeadSpeed, sent.clubData.ClubHeadSpeed, 0.0005);
}

}  // namespace
}  // namespace orv::test
