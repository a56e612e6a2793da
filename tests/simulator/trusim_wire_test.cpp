// What the stand-in simulator accepts from the wire, and what the link does
// with a simulator that stops reading or never answers.
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include <chrono>
#include <initializer_list>
#include <string>
#include <thread>
#include <vector>

#include "simulator/e6_trusim_client.h"
#include "tests/simulator/recording_listener.h"
#include "tests/support/test_support.h"
#include "tools/trusim-emulator/trusim_emulator.h"

namespace {

using namespace std::chrono_literals;
using orv::test::Eventually;

// One shot as the program writes it.
const std::string kBall =
    "{\"Type\":\"SetBallData\",\"BallData\":{\"BackSpin\":2600.000, \"BallSpeed\":139.120,\t"
    "\"LaunchAngle\":11.880, \"LaunchDirection\":-2.000, \"SideSpin\":-350.000}}";
const std::string kClub =
    R"({"Type":"SetClubData","ClubData":{"ClubAngleFace":1.000, "ClubAnglePath":-2.000, "ClubHeadSpeed":94.000}})";
const std::string kMisc =
    R"({"Type":"SetMiscData", "MiscData":{"TeeHeight":0.200, "TeeType":0, "TeedUp":"true"}})";
const std::string kSendShot = R"({"Type":"SendShot"})";

// A loopback socket that listens and never accepts; its port goes to `port`.
int NeverAccepting(int backlog, uint16_t* port) {
    const int fd = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address{AF_INET, 0, {htonl(INADDR_LOOPBACK)}, {}};
    socklen_t length = sizeof address;
    EXPECT_EQ(::bind(fd, reinterpret_cast<sockaddr*>(&address), length), 0);
    EXPECT_EQ(::listen(fd, backlog), 0);
    EXPECT_EQ(::getsockname(fd, reinterpret_cast<sockaddr*>(&address), &length), 0);
    *port = ntohs(address.sin_port);
    return fd;
}

std::string Replaced(std::string text, const std::string& from, const std::string& to) {
    return text.replace(text.find(from), from.size(), to);
}

TEST(StrictSimulator, RefusesEveryInexactTextAndNeverRecordsAShotFromIt) {
    orv::TruSimEmulator emulator({"127.0.0.1", 0});
    ASSERT_TRUE(emulator.Start());
    emulator.SetAnswerHandshake(false);
    E6TruSimClient client;
    client.Init("127.0.0.1", emulator.Port());
    ASSERT_TRUE(emulator.WaitForMessages(1, 10s));

    auto send = [&](std::initializer_list<std::string> texts, int refusals) {
        const int before = emulator.ProtocolErrors();
        for (const std::string& text : texts) {
            ASSERT_TRUE(client.SendTruSimMessage(text));
        }
        EXPECT_TRUE(Eventually([&] { return emulator.ProtocolErrors() == before + refusals; }))
            << *texts.begin();
    };
    send({kBall, kClub, kMisc, kSendShot}, 4);  // exact, but before authentication

    emulator.SetAnswerHandshake(true);
    ASSERT_TRUE(client.SendTruSimMessage(R"({"Type":"Handshake"})"));
    ASSERT_TRUE(Eventually([&] { return emulator.IsClientAuthenticated(); }));
    const std::string wrong[] = {
        Replaced(kBall, "139.120", "139,120"),
        Replaced(kBall, ",\t", ", "),
        Replaced(kBall, ", \"SideSpin\":-350.000", ""),
        Replaced(kBall, "-350.000", "nan"),
        kBall.substr(0, 60),
        Replaced(kClub, "94.000", "94.00"),
        R"({"Type":"SetClubData","ClubData":{"ClubAnglePath":-2.000, "ClubAngleFace":1.000, "ClubHeadSpeed":94.000}})",
        Replaced(kMisc, "\"true\"", "true"),
        Replaced(kMisc, "\"TeeType\":0", "\"TeeType\":0.000"),
    };
    for (const std::string& text : wrong) {
        send({text, kSendShot}, 2);  // the wrong part, then the shot that lacks it
    }
    EXPECT_TRUE(emulator.Shots().empty());

    send({kBall, kClub, kMisc, kSendShot}, 0);
    ASSERT_TRUE(emulator.WaitForShots(1, 10s));
    EXPECT_EQ(emulator.Shots()[0].ballSpeed, 139.12);
    EXPECT_EQ(emulator.Shots()[0].clubHeadSpeed, 94.0);
    send({kSendShot}, 1);  // nothing of a shot carries over to the next
    EXPECT_EQ(emulator.Shots().size(), 1u);
    client.Stop();
}

TEST(StalledSimulator, SendThatCannotFinishInTimeIsASendErrorAndTheLinkReopens) {
    // The kernel takes the connections and some bytes, and nothing is ever read.
    uint16_t port = 0;
    const int simulator = NeverAccepting(4, &port);
    orv::test::RecordingListener listener;
    E6TruSimClient client;
    client.SetCallback(&listener);
    E6TruSimTiming timing;
    timing.sendTimeLimit = 200ms;
    timing.reconnectPause = 50ms;
    client.SetTiming(timing);
    orv::test::LogCapture log;
    client.Init("127.0.0.1", port);
    ASSERT_TRUE(Eventually([&] { return client.IsConnected(); }));

    const std::string large(1 << 20, 'x');
    int sent = 0;
    while (sent < 100 && client.SendTruSimMessage(large)) {
        ++sent;
    }
    EXPECT_LT(sent, 100);
    EXPECT_EQ(orv::test::CountOf(log.Text(), "SendTruSimMessage("), 1u);
    EXPECT_EQ(orv::test::CountOf(log.Text(), ")] send() failed: "), 1u);
    EXPECT_TRUE(Eventually([&] { return listener.Count("connect") == 2; }));
    client.Stop();
    ::close(simulator);
}

TEST(UnansweredSimulator, ConnectStillUnderWayDoesNotHoldUpStop) {
    // A full accept queue drops further SYNs: the client's connect hangs.
    uint16_t port = 0;
    const int simulator = NeverAccepting(0, &port);
    sockaddr_in address{AF_INET, htons(port), {htonl(INADDR_LOOPBACK)}, {}};
    std::vector<int> fillers;
    for (int i = 0; i < 2; ++i) {
        fillers.push_back(::socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK, 0));
        ::connect(fillers.back(), reinterpret_cast<sockaddr*>(&address), sizeof address);
    }
    orv::test::RecordingListener listener;
    E6TruSimClient client;
    client.SetCallback(&listener);
    client.Init("127.0.0.1", port);
    std::this_thread::sleep_for(300ms);
    // Still connecting: the socket exists, the link does not.
    EXPECT_TRUE(client.IsSocketOpen());
    EXPECT_EQ(listener.Count("connect"), 0);
    const auto before = std::chrono::steady_clock::now();
    client.Stop();
    // Well inside the 3 s a connect may take.
    EXPECT_LT(std::chrono::steady_clock::now() - before, 1500ms);
    for (int fd : fillers) {
        ::close(fd);
    }
    ::close(simulator);
}

}  // namespace
