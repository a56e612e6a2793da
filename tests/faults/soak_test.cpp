// Ten thousand swings through the whole session: every one must arrive as one
// complete shot, and threads, descriptors and memory must stay where they were.
#include <fstream>

#include <unistd.h>

#include "tests/session/session_fixture.h"

namespace orv::test {
namespace {

using namespace std::chrono_literals;

constexpr int kSwings = 10000;
constexpr int kWarmUp = 1000;
// Growth allowed between the warm-up and the end. The stand-in simulator
// keeps every shot's record (about 100 bytes each), which accounts for ~1 MiB.
constexpr long kRssMarginKiB = 4 * 1024;

// Resident memory: statm counts it in pages, as its second field.
long RssKiB() {
    long size = 0;
    long pages = -1;
    std::ifstream("/proc/self/statm") >> size >> pages;
    return pages * (::sysconf(_SC_PAGESIZE) / 1024);
}

// Counts UI events without keeping them, so the test itself does not grow.
class CountingUi : public Orvane::OrvManagerCallback {
public:
    void OnOrvE6ConnectionChanged(bool) override {}
    void OnOrvOrvaneConnectionChanged(int state) override { connected = state == 3; }
    void OnOrvOrvaneBatteryState(int) override {}
    void OnOrvShot() override { ++shots; }
    void OnOrvReady() override {}
    std::atomic<bool> connected{false};
    std::atomic<int> shots{0};
};

using Soak = SessionTest;

TEST_F(Soak, TenThousandSwingsEachOneCompleteShotWithNothingLeaked) {
    // Swing steps and re-arming as fast as the links allow.
    sensor = std::make_shared<VirtualSensor>(
        "orvane-demo", VirtualSensorTiming{.answerDelay = 1ms, .stepGap = 2ms});
    emulator->Stop();
    emulatorRearmDelay = 1ms;
    StartEmulator();
    const auto armed = [&] {
        E6TruSimClient* client = manager->GetE6();
        return client != nullptr && client->IsAuthenticated() && client->GetArmState() == 0 &&
               client->GetCurrentClub() != 0;
    };
    const int threadsBefore = ThreadCount();
    const int fdsBefore = OpenFdCount();

    CountingUi counting;
    StartManager(&counting);
    ASSERT_TRUE(Eventually([&] { return counting.connected.load() && armed(); }));

    long rssAfterWarmUp = 0;
    int incomplete = 0;
    for (int swing = 1; swing <= kSwings; ++swing) {
        ASSERT_TRUE(Eventually(armed, 10s, 1ms)) << "swing " << swing;
        emulator->ClearReceived();
        sensor->TriggerSwing(DriverSwing());
        ASSERT_TRUE(emulator->WaitForShots(static_cast<size_t>(swing), 10s)) << "swing " << swing;
        if (ShotSequence(emulator->Received()) != kShotTypes) {
            ++incomplete;
        }
        if (swing % 500 == 0) {
            sensor->ClearWrittenFrames();  // the sensor's own record of commands
        }
        if (swing == kWarmUp) {
            rssAfterWarmUp = RssKiB();
        }
    }
    const long rssAtEnd = RssKiB();
    EXPECT_EQ(incomplete, 0);
    EXPECT_EQ(emulator->Shots().size(), static_cast<size_t>(kSwings));
    EXPECT_TRUE(Eventually([&] { return counting.shots.load() == kSwings; }));

    manager->Stop();
    manager.reset();
    // Counted with the sensor and the simulator still up, as before the start.
    ASSERT_TRUE(emulator->WaitForClientGone(5s));
    EXPECT_TRUE(Eventually([&] { return ThreadCount() <= threadsBefore; }, 2s)) << ThreadNames();
    EXPECT_LE(OpenFdCount(), fdsBefore);
    EXPECT_LE(rssAtEnd - rssAfterWarmUp, kRssMarginKiB)
        << "after " << kWarmUp << " swings " << rssAfterWarmUp << " KiB";
}

}  // namespace
}  // namespace orv::test
