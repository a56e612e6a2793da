// A misbehaving simulator: the session lives through it, says so once in the
// log, and the first swing after the fault is a whole shot again.
#include <algorithm>

#include "tests/faults/fault_session.h"

namespace orv::test {
namespace {

using namespace std::chrono_literals;

class SimulatorFaults : public FaultSession {};

TEST_F(SimulatorFaults, ConnectionDroppedMidMessageIsReopened) {
    LogCapture log;
    StartManager();
    ASSERT_TRUE(WaitReady());

    // Half a message, then the link is gone: once with a reset, once closed.
    for (const bool reset : {true, false}) {
        SCOPED_TRACE(reset ? "reset" : "closed");
        const int connections = emulator->Connections();
        const std::string before = log.Text();
        ASSERT_TRUE(emulator->SendRaw(R"({"Type":"SimCommand","SubT)"));
        ASSERT_TRUE(emulator->DropConnection(reset));
        ASSERT_TRUE(ReconnectedAndReady(connections));
        const std::string during = log.Text().substr(before.size());
        // A send that meets the dead link at the same moment reports it too.
        const size_t lines = CountOf(during, "E6 Client OnDisconnect.\n");
        EXPECT_TRUE(lines == 1 || lines == 2) << during;
        // The half message died with its link: nothing tried to read it.
        EXPECT_EQ(CountOf(during, "Error:"), 0u) << during;
        ASSERT_TRUE(SwingBecomesOneShot());
    }
    EXPECT_TRUE(manager->IsRunning());
}

TEST_F(SimulatorFaults, GarbageIsLoggedAndTheLinkStays) {
    LogCapture log;
    StartManager();
    ASSERT_TRUE(WaitReady());
    const int connections = emulator->Connections();

    // Each bad message makes exactly one line; the next one is read normally.
    using namespace std::string_literals;
    const auto errors = [&] { return CountOf(log.Text(), "Error:"); };
    const auto unknown = [&] { return CountOf(log.Text(), "Not Support.\n"); };
    ASSERT_TRUE(emulator->SendRaw("this is not json\0"s));
    ASSERT_TRUE(Eventually([&] { return errors() == 1; }));
    ASSERT_TRUE(emulator->SendRaw("\x01\xff\xfe{{[\"\0"s));
    ASSERT_TRUE(Eventually([&] { return errors() == 2; }));
    ASSERT_TRUE(emulator->SendRaw(R"({"Type":"NoSuchThing","Value":[1,2,3]})"s + '\0'));
    ASSERT_TRUE(Eventually([&] { return unknown() == 1; }));
    ASSERT_TRUE(emulator->SendRaw("\0"s));  // an empty message
    ASSERT_TRUE(Eventually([&] { return errors() == 3; }));
    EXPECT_EQ(unknown(), 1u) << log.Text();

    ASSERT_TRUE(SwingBecomesOneShot());
    EXPECT_EQ(emulator->Connections(), connections);
    EXPECT_FALSE(ui.Saw("e6:0"));
}

TEST_F(SimulatorFaults, TenMegabytesWithoutEndDropTheLinkWhichComesBack) {
    LogCapture log;
    StartManager();
    ASSERT_TRUE(WaitReady());
    const int connections = emulator->Connections();

    // The client gives up after its limit, so the rest of the write may fail.
    emulator->SendRaw(std::string(10 * 1024 * 1024, 'x'));
    ASSERT_TRUE(ReconnectedAndReady(connections));
    EXPECT_EQ(
        CountOf(log.Text(), "Message longer than 65536 bytes without its end; link dropped\n"), 1u);
    ASSERT_TRUE(SwingBecomesOneShot());
}

TEST_F(SimulatorFaults, UnansweredHandshakeHoldsShotsBackUntilTheSimulatorAnswers) {
    LogCapture log;
    emulator->SetAnswerHandshake(false);
    StartManager();
    ASSERT_TRUE(Eventually([&] { return ui.Saw("ble:3") && emulator->IsClientConnected(); }));
    // The first keep-alive may overtake the handshake; both are on the wire.
    ASSERT_TRUE(Eventually([&] {
        const auto received = emulator->Received();
        return std::find(received.begin(), received.end(), R"({"Type":"Handshake"})") !=
               received.end();
    }));

    // A swing meanwhile is shown but cannot go anywhere; it is not queued up.
    sensor->TriggerSwing(DriverSwing());
    ASSERT_TRUE(Eventually([&] { return ui.Count("shot") == 1; }));
    EXPECT_FALSE(manager->GetE6()->IsAuthenticated());
    EXPECT_EQ(ShotSequence(emulator->Received()).size(), 0u);
    // Connected, never authenticated: the one line that tells the story.
    EXPECT_EQ(CountOf(log.Text(), "E6 Client OnConnect.\n"), 1u);
    EXPECT_FALSE(ui.Saw("e6:1"));

    // The simulator comes to its senses and starts the conversation anew.
    const int connections = emulator->Connections();
    emulator->SetAnswerHandshake(true);
    ASSERT_TRUE(emulator->DropConnection(false));
    ASSERT_TRUE(ReconnectedAndReady(connections));
    EXPECT_EQ(CountOf(log.Text(), "E6 Client OnDisconnect.\n"), 1u);
    ASSERT_TRUE(SwingBecomesOneShot());
    EXPECT_EQ(ShotCount(), 1u);  // the swing from before never turned up late
}

TEST_F(SimulatorFaults, RefusedAuthenticationIsLoggedOnceAndHealsOnTheNextConnection) {
    LogCapture log;
    emulator->SetRefuseAuthentication(true);
    StartManager();
    ASSERT_TRUE(
        Eventually([&] { return log.Text().find("E6 auth failed.\n") != std::string::npos; }));
    ASSERT_TRUE(Eventually([&] { return ui.Saw("ble:3"); }));
    EXPECT_FALSE(ui.Saw("e6:1"));

    sensor->TriggerSwing(DriverSwing());
    ASSERT_TRUE(Eventually([&] { return ui.Count("shot") == 1; }));
    EXPECT_EQ(ShotSequence(emulator->Received()).size(), 0u);
    EXPECT_EQ(CountOf(log.Text(), "E6 auth failed.\n"), 1u);

    const int connections = emulator->Connections();
    emulator->SetRefuseAuthentication(false);
    ASSERT_TRUE(emulator->DropConnection(true));
    ASSERT_TRUE(ReconnectedAndReady(connections));
    EXPECT_TRUE(Eventually([&] { return ui.Saw("e6:1"); }));
    ASSERT_TRUE(SwingBecomesOneShot());
    EXPECT_EQ(ShotCount(), 1u);
}

TEST_F(SimulatorFaults, SlowAnswersAreWaitedFor) {
    LogCapture log;
    emulator->SetReplyDelay(300ms);
    StartManager();
    ASSERT_TRUE(WaitReady());
    ASSERT_TRUE(SwingBecomesOneShot());
    ASSERT_TRUE(SwingBecomesOneShot());
    // Slowness is not a fault of the link: it was never dropped.
    EXPECT_EQ(emulator->Connections(), 1);
    EXPECT_EQ(CountOf(log.Text(), "E6 Client OnDisconnect.\n"), 0u);
}

}  // namespace
}  // namespace orv::test
