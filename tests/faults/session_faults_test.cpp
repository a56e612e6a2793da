// A misbehaving simulator or sensor: the session lives through each fault,
// leaves the expected lines in the log, and the next swing is one whole shot.
#include <functional>

#include "protocol/code_tables.h"
#include "protocol/command_models.h"
#include "tests/session/session_fixture.h"

namespace orv::test {
namespace {

using namespace std::chrono_literals;
using namespace std::string_literals;

class Faults;
struct Fault {
    const char* name;
    void (Faults::*inject)();                           // brings the session up and does the damage
    size_t shots;                                       // after the swing that follows the fault
    std::vector<std::pair<const char*, size_t>> lines;  // log line -> times seen
};
void PrintTo(const Fault& fault, std::ostream* out) {
    *out << fault.name;
}

class Faults : public SessionTest, public ::testing::WithParamInterface<Fault> {
public:
    void StartReady() {
        StartManager();
        ASSERT_TRUE(WaitReady());
    }
    bool ReconnectedAndReady(int connectionsBefore) {
        return emulator->WaitForConnections(connectionsBefore + 1, 10s) && WaitReady();
    }
    // Half a message, then the link is gone; the half dies with its link.
    void HalfMessageThenDrop(bool reset) {
        StartReady();
        const int connections = emulator->Connections();
        ASSERT_TRUE(emulator->SendRaw(R"({"Type":"SimCommand","SubT)"));
        ASSERT_TRUE(emulator->DropConnection(reset));
        ASSERT_TRUE(ReconnectedAndReady(connections));
    }
    void ResetMidMessage() { HalfMessageThenDrop(true); }
    void ClosedMidMessage() { HalfMessageThenDrop(false); }
    void Garbage() {
        StartReady();
        ASSERT_TRUE(emulator->SendRaw("this is not json\0\x01\xff\xfe{{[\"\0"s +
                                      R"({"Type":"NoSuchThing","Value":[1,2,3]})" + '\0' + '\0'));
        ASSERT_TRUE(Eventually([&] { return CountOf(log.Text(), "Not Support.\n") == 1; }));
    }
    void EndlessMessage() {
        StartReady();
        // The client gives up after its limit, so the rest of the write may fail.
        emulator->SendRaw(std::string(10 * 1024 * 1024, 'x'));
        ASSERT_TRUE(ReconnectedAndReady(1));
    }
    // A link never authenticated (`fault` on until it is dropped): the swing
    // is shown, but never sent nor queued for later.
    void NeverAuthenticated(const std::function<void(bool)>& fault,
                            const std::function<bool()>& seen, bool reset) {
        fault(true);
        StartManager();
        ASSERT_TRUE(Eventually([&] { return ui.Saw("ble:3") && seen(); }));
        sensor->TriggerSwing(DriverSwing());
        ASSERT_TRUE(Eventually([&] { return ui.Count("shot") == 1; }));
        EXPECT_EQ(ShotSequence(emulator->Received()).size(), 0u);
        EXPECT_FALSE(ui.Saw("e6:1"));
        fault(false);
        ASSERT_TRUE(emulator->DropConnection(reset));
        ASSERT_TRUE(ReconnectedAndReady(1));
    }
    void UnansweredHandshake() {
        NeverAuthenticated([&](bool on) { emulator->SetAnswerHandshake(!on); },
                           [&] { return !ReceivedOfType("Handshake").empty(); }, false);
    }
    void RefusedAuthentication() {
        NeverAuthenticated([&](bool on) { emulator->SetRefuseAuthentication(on); },
                           [&] { return CountOf(log.Text(), "E6 auth failed.\n") == 1; }, true);
    }
    void SlowSimulator() {
        emulator->SetReplyDelay(300ms);
        StartReady();
        ASSERT_TRUE(SwingBecomesOneShot());
    }
    // Nothing answers the firmware request: dropped after the fresh-link limit.
    void SilentNewSensor() {
        sensor->SetSilent(true);
        StartManager();
        ASSERT_TRUE(Eventually([&] { return ui.Saw("ble:0"); }));
        sensor->SetSilent(false);
    }
    void SilentSensor() {
        StartReady();
        // Every command of the connect sequence answered: the link has proven alive.
        ASSERT_TRUE(Eventually([&] { return manager->GetState().lastSendMs.load() == 0; }));
        sensor->SetSilent(true);
        // An answer still on its way clears the command awaiting one; ask
        // again until a question stays open.
        OrvCmdBatteryStateReqModel battery;
        ASSERT_TRUE(Eventually([&] {
            if (manager->GetState().lastSendMs.load() == 0) {
                manager->EnqueueCommand(battery);
            }
            return ui.Saw("ble:0");
        }));
        sensor->SetSilent(false);
    }
    void LinkLostMidSwing() {
        // Steps far enough apart to drop the link between them.
        sensor = std::make_shared<VirtualSensor>(
            "orvane-demo", VirtualSensorTiming{.answerDelay = 1ms, .stepGap = 400ms});
        StartReady();
        sensor->TriggerSwing(DriverSwing());
        ASSERT_TRUE(Eventually([&] { return CountOf(log.Text(), "Enter Backswing.\n") == 1; }));
        sensor->DropLink();
        ASSERT_TRUE(Eventually([&] { return ui.Saw("ble:0"); }));
        // The clip of the broken swing is ended by the back-swing time-out.
        ASSERT_TRUE(Eventually([&] { return recording.Count("stop:0") >= 1; }));
        sensor->ComeBack();
    }
    void BadFrames() {
        StartReady();
        sensor->SendFrame({0x55, 0x01, 0x02, 0x56});     // unknown code
        sensor->SendFrame({ORV_DATA_SWING_INFO, 0x11});  // cut short: zeros, dropped
        sensor->SendFrame({ORV_DATA_FW_VERSION});        // code only
        sensor->SendFrame({});                           // empty: a sign of life only
        sensor->SendFrame(SensorFrame(4096, 0xEE));      // oversized, unknown code
        SensorFrame oversizedBattery = BatteryFrame(42);
        oversizedBattery.resize(2048, 0xAB);  // trailing bytes are ignored
        sensor->SendFrame(oversizedBattery);
        ASSERT_TRUE(Eventually([&] { return ui.Saw("battery:42"); }));
        EXPECT_EQ(emulator->Shots().size(), 0u);
    }
    void Flood() {
        StartReady();
        const uint64_t before = sensor->NotificationsSent();
        constexpr int kFlood = 3000;
        sensor->Flood(BatteryFrame(61), 1000, kFlood);
        ASSERT_TRUE(Eventually([&] { return sensor->NotificationsSent() > before + 100; }));
        ASSERT_TRUE(SwingBecomesOneShot());
        EXPECT_LT(sensor->NotificationsSent(), before + kFlood + 3) << "the flood was over first";
        // Every flood notification was handled too, none queued forever.
        ASSERT_TRUE(Eventually([&] { return ui.Count("battery:61") == kFlood; }, 20s));
    }

    LogCapture log;
};

TEST_P(Faults, AreLoggedAndTheNextSwingIsOneWholeShot) {
    (this->*GetParam().inject)();
    ASSERT_FALSE(HasFatalFailure());
    ASSERT_TRUE(SwingBecomesOneShot());
    const std::string text = log.Text();
    for (const auto& [line, times] : GetParam().lines) {
        EXPECT_EQ(CountOf(text, line), times) << line << "\n" << text;
    }
    EXPECT_EQ(emulator->Shots().size(), GetParam().shots);
    // No fault left half a shot behind, before or after.
    EXPECT_EQ(ShotSequence(emulator->Received()).size(), 4 * GetParam().shots);
    EXPECT_TRUE(manager->IsRunning());
}

const char kConnect[] = "E6 Client OnConnect.\n";
const char kDisconnect[] = "E6 Client OnDisconnect.\n";
const char kBleLost[] = "Ble disconnected\n";

// The fault's name and its injection, the shots after the next swing, and log line -> times seen.
#define FAULT(name) #name, &Faults::name
const Fault kFaults[] = {
    {FAULT(ResetMidMessage), 1, {{kConnect, 2}, {"Error:", 0}}},
    {FAULT(ClosedMidMessage), 1, {{kConnect, 2}, {"Error:", 0}}},
    {FAULT(Garbage), 1, {{"Error:", 3}, {"Not Support.\n", 1}, {kConnect, 1}, {kDisconnect, 0}}},
    {FAULT(EndlessMessage),
     1,
     {{"Message longer than 65536 bytes without its end; link dropped\n", 1}, {kConnect, 2}}},
    {FAULT(UnansweredHandshake), 1, {{kConnect, 2}, {kDisconnect, 1}}},
    {FAULT(RefusedAuthentication), 1, {{"E6 auth failed.\n", 1}, {kConnect, 2}}},
    {FAULT(SlowSimulator), 2, {{kConnect, 1}, {kDisconnect, 0}}},
    {FAULT(SilentNewSensor), 1, {{"Call disconnect.(timeout:300)\n", 1}, {kBleLost, 1}}},
    {FAULT(SilentSensor), 1, {{"Call disconnect.(timeout:1000)\n", 1}, {kBleLost, 1}}},
    {FAULT(LinkLostMidSwing), 1, {{kBleLost, 1}, {"Back swing timeout.\n", 1}}},
    {FAULT(BadFrames), 1, {{"Unknown data type: 85\n", 1}, {"Unknown data type: 238\n", 1}}},
    {FAULT(Flood), 2, {{kBleLost, 0}}},
};
#undef FAULT
INSTANTIATE_TEST_SUITE_P(Session, Faults, ::testing::ValuesIn(kFaults),
                         [](const auto& row) { return std::string(row.param.name); });

}  // namespace
}  // namespace orv::test
