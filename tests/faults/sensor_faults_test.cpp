// A misbehaving sensor: silence, a link lost mid-swing, malformed frames and
// a notification flood. The session survives each and shoots again.
#include "protocol/code_tables.h"
#include "protocol/command_models.h"
#include "tests/faults/fault_session.h"

namespace orv::test {
namespace {

using namespace std::chrono_literals;

class SensorFaults : public FaultSession {};

TEST_F(SensorFaults, SilentSensorIsDroppedAndTakenBackWhenItSpeaksAgain) {
    LogCapture log;
    StartManager();
    ASSERT_TRUE(WaitReady());
    // Every command of the connect sequence answered: the link has proven alive.
    ASSERT_TRUE(Eventually([&] { return manager->GetState().lastSendMs.load() == 0; }));

    sensor->SetSilent(true);
    // An answer still on its way clears the command awaiting one; ask again
    // until a question stays open.
    OrvCmdBatteryStateReqModel battery;
    ASSERT_TRUE(Eventually([&] {
        if (manager->GetState().lastSendMs.load() == 0) {
            manager->EnqueueCommand(battery);
        }
        return ui.Saw("ble:0");
    }));
    EXPECT_EQ(CountOf(log.Text(), "Call disconnect.(timeout:1000)\n"), 1u) << log.Text();

    sensor->SetSilent(false);
    ASSERT_TRUE(SwingBecomesOneShot());
    EXPECT_TRUE(manager->IsRunning());
}

TEST_F(SensorFaults, LinkLostBetweenBackSwingAndSwingRecordLosesNoLaterShot) {
    LogCapture log;
    // Steps far enough apart to drop the link between them.
    VirtualSensorTiming timing;
    timing.answerDelay = 1ms;
    timing.stepGap = 400ms;
    sensor = std::make_shared<VirtualSensor>("orvane-demo", timing);
    StartManager();
    ASSERT_TRUE(WaitReady());

    sensor->TriggerSwing(DriverSwing());
    ASSERT_TRUE(
        Eventually([&] { return log.Text().find("Enter Backswing.\n") != std::string::npos; }));
    sensor->DropLink();
    ASSERT_TRUE(Eventually([&] { return ui.Saw("ble:0"); }));
    EXPECT_EQ(CountOf(log.Text(), "Ble disconnected\n"), 1u);
    // The clip of the broken swing is ended by the back-swing time-out.
    ASSERT_TRUE(Eventually([&] { return recording.Count("stop:0") >= 1; }));

    sensor->ComeBack();
    ASSERT_TRUE(SwingBecomesOneShot());
    // The broken swing never became half a shot, before or after.
    EXPECT_EQ(ShotCount(), 1u);
    EXPECT_EQ(ShotSequence(emulator->Received()).size(), 4u);
}

TEST_F(SensorFaults, ShortEmptyOversizedAndUnknownFramesAreSurvived) {
    LogCapture log;
    StartManager();
    ASSERT_TRUE(WaitReady());

    sensor->SendFrame({0x55, 0x01, 0x02, 0x56});     // unknown code
    sensor->SendFrame({ORV_DATA_SWING_INFO, 0x11});  // cut short: zeros, dropped
    sensor->SendFrame({ORV_DATA_FW_VERSION});        // code only
    sensor->SendFrame({});                           // empty: a sign of life only
    sensor->SendFrame(SensorFrame(4096, 0xEE));      // oversized, unknown code
    SensorFrame oversizedBattery = BatteryFrame(42);
    oversizedBattery.resize(2048, 0xAB);  // trailing bytes are ignored
    sensor->SendFrame(oversizedBattery);
    ASSERT_TRUE(Eventually([&] { return ui.Saw("battery:42"); }));
    const std::string text = log.Text();
    EXPECT_EQ(CountOf(text, "Unknown data type: 85\n"), 1u) << text;
    EXPECT_EQ(CountOf(text, "Unknown data type: 238\n"), 1u) << text;
    EXPECT_EQ(ShotCount(), 0u);

    ASSERT_TRUE(SwingBecomesOneShot());
    EXPECT_EQ(ui.Count("shot"), 1);
}

TEST_F(SensorFaults, FloodAtOneKilohertzDoesNotStarveASwing) {
    StartManager();
    ASSERT_TRUE(WaitReady());
    const uint64_t before = sensor->NotificationsSent();
    constexpr int kFlood = 3000;
    sensor->Flood(BatteryFrame(61), 1000, kFlood);
    ASSERT_TRUE(Eventually([&] { return sensor->NotificationsSent() > before + 100; }));

    // The swing goes in while the flood is running and comes out as a shot.
    ASSERT_TRUE(SwingBecomesOneShot());
    EXPECT_LT(sensor->NotificationsSent(), before + kFlood + 3) << "the flood was over first";
    // Every flood notification was handled too, none queued forever.
    ASSERT_TRUE(Eventually([&] { return ui.Count("battery:61") == kFlood; }, 20s));
    EXPECT_TRUE(manager->IsRunning());
    EXPECT_FALSE(ui.Saw("ble:0"));
}

}  // namespace
}  // namespace orv::test
