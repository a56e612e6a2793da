// The client against the stand-in simulator over real TCP on loopback.
#include <gtest/gtest.h>

#include <algorithm>
#include <future>
#include <latch>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "simulator/e6_trusim_client.h"
#include "simulator/trusim_messages.h"
#include "tests/simulator/recording_listener.h"
#include "tests/support/test_support.h"
#include "tools/trusim-emulator/trusim_emulator.h"

namespace {

using namespace std::chrono_literals;
using orv::test::Eventually;
using orv::test::RecordingListener;

constexpr char kChallenge[] = "Emulator challenge 42";
// MD5 of kChallenge followed by the program's key.
constexpr char kChallengeAnswer[] =
    "{\"Type\":\"Challenge\", \"Developer\":\"7C1E54A2-9B3D-4F60-8A17-D2E9B0C46F58\","
    "\"Hash\":\"634cc6aa783f1bc91a50da3386a1e936\"}";
constexpr char kHandshake[] = "{\"Type\":\"Handshake\"}";

class TruSimLink : public ::testing::Test {
protected:
    void SetUp() override {
        emulator = std::make_unique<orv::TruSimEmulator>(
            orv::TruSimEmulatorOptions{"127.0.0.1", 0, 200ms});
        ASSERT_TRUE(emulator->Start());
        emulator->SetChallenge(kChallenge);
        client.SetCallback(&listener);
    }

    void TearDown() override {
        client.Stop();
        emulator->Stop();
    }

    void Connect(const E6TruSimTiming& timing = E6TruSimTiming{}) {
        client.SetTiming(timing);
        client.Init("127.0.0.1", emulator->Port());
    }

    // Authenticated and the greeting (player data, environment data, Arm) taken in.
    bool Greeted(size_t times = 1) {
        return Eventually([&] {
            return listener.Started("auth:") >= times && listener.Started("arm:") >= times &&
                   listener.Started("player:") >= times && client.GetArmState() == 0;
        });
    }

    RecordingListener listener;
    E6TruSimClient client;
    std::unique_ptr<orv::TruSimEmulator> emulator;
};

TEST_F(TruSimLink, AuthenticatesByChallengeTakesTheGreetingAndASecondAfterEndComesBack) {
    Connect();
    ASSERT_TRUE(Greeted());
    const std::vector<std::string> received = emulator->Received();
    ASSERT_GE(received.size(), 2u);
    EXPECT_EQ(received[0], kHandshake);
    EXPECT_EQ(received[1], kChallengeAnswer);
    EXPECT_TRUE(client.IsAuthenticated());
    EXPECT_EQ(client.GetCurrentClub(), 1u);
    ASSERT_TRUE(Eventually([&] { return listener.Started("environment:") == 1; }));
    std::vector<std::string> heard = listener.Of();
    std::sort(heard.begin(), heard.end());  // notifications may overtake each other
    EXPECT_EQ(heard,
              (std::vector<std::string>{"arm:0", "auth:1", "connect", "environment:150,Fairway",
                                        "player:Emulator,1,Right,1,12,0.2,1"}));
    EXPECT_EQ(client.GetDistanceToPin(), 150.0);

    const auto ended = std::chrono::steady_clock::now();
    EXPECT_TRUE(emulator->SendEnd());
    EXPECT_TRUE(Eventually([&] { return listener.Count("disconnect") == 1; }));
    EXPECT_FALSE(client.IsAuthenticated());
    EXPECT_EQ(client.GetCurrentClub(), 0u);
    EXPECT_EQ(client.GetArmState(), 0);  // kept across the loss of the link
    ASSERT_TRUE(emulator->WaitForConnections(2, 5s));
    const auto gap = std::chrono::steady_clock::now() - ended;
    EXPECT_GE(gap, 900ms);
    EXPECT_LE(gap, 2500ms);
    ASSERT_TRUE(Greeted(2));
    EXPECT_EQ(listener.Count("connect"), 2);
    EXPECT_EQ(listener.Count("disconnect"), 1);
}

TEST_F(TruSimLink, StopWhileConnectedNotifiesAndNothingAfterwards) {
    auto owner = std::make_unique<RecordingListener>();
    auto stopped = std::make_unique<E6TruSimClient>();
    stopped->SetCallback(owner.get());
    stopped->Init("127.0.0.1", emulator->Port());
    ASSERT_TRUE(Eventually([&] { return owner->Started("arm:") == 1; }));
    stopped->Stop();
    // Once by Stop, and once more by the receive that the closing socket ends
    // when the connection thread was blocked in it (not when between reads).
    const int disconnects = owner->Count("disconnect");
    EXPECT_TRUE(disconnects == 1 || disconnects == 2) << disconnects;
    EXPECT_FALSE(stopped->IsSocketOpen());
    owner.reset();  // the listener may go right after Stop
    EXPECT_TRUE(emulator->WaitForClientGone(5s));
    EXPECT_FALSE(stopped->SendTruSimMessage(E6_GetPingJson()));
    stopped.reset();
    EXPECT_EQ(emulator->Connections(), 1);
}

// Arm-state notifications wait at a gate until the test opens it.
class GatedListener : public RecordingListener {
public:
    void OnE6ArmState(int state) override {
        ++waiting;
        gate.wait();
        --waiting;
        RecordingListener::OnE6ArmState(state);
    }
    std::promise<void> opener;
    std::shared_future<void> gate = opener.get_future().share();
    std::atomic<int> waiting{0};  // only grows while the gate is shut
};

TEST_F(TruSimLink, StalledListenerHoldsBackReceptionInsteadOfPilingUpThreads) {
    GatedListener gated;
    E6TruSimClient held;
    held.SetCallback(&gated);
    held.Init("127.0.0.1", emulator->Port());
    ASSERT_TRUE(Eventually([&] { return gated.waiting.load() == 1; }));  // the greeting's Arm
    std::string flood;
    for (int i = 0; i < 200; ++i) {
        flood += std::string("{\"Type\":\"SimCommand\",\"Command\":\"Disarm\"}") + '\0';
    }
    ASSERT_TRUE(emulator->SendRaw(flood));
    const int limit = E6TruSimClient::kMaxNotificationsInFlight;
    ASSERT_TRUE(Eventually([&] { return gated.waiting.load() == limit; }));
    std::this_thread::sleep_for(100ms);
    EXPECT_EQ(gated.waiting.load(), limit);
    gated.opener.set_value();
    EXPECT_TRUE(Eventually([&] { return gated.Started("arm:") == 201; }));
    EXPECT_EQ(held.GetArmState(), 1);
    held.Stop();
}

TEST_F(TruSimLink, EnvironmentDataArrivingFasterThanASecondIsPassedOnOnce) {
    emulator->SetGreeting(false);
    Connect();
    ASSERT_TRUE(Eventually([&] { return client.IsAuthenticated(); }));
    const auto start = std::chrono::steady_clock::now();
    for (int i = 0; i < 15; ++i) {
        std::this_thread::sleep_until(start + i * 100ms);
        emulator->SetDistanceToPin(100 + i);
        ASSERT_TRUE(emulator->SendEnvironmentData());
    }
    ASSERT_TRUE(Eventually([&] { return client.GetDistanceToPin() == 114.0; }));
    EXPECT_EQ(listener.Started("environment:"), 1u);
    std::this_thread::sleep_for(1200ms);
    emulator->SetDistanceToPin(42.5);
    ASSERT_TRUE(emulator->SendEnvironmentData());
    ASSERT_TRUE(Eventually([&] { return listener.Started("environment:") == 2; }));
    EXPECT_EQ(listener.Of("environment:"),
              (std::vector<std::string>{"environment:100,Fairway", "environment:42.5,Fairway"}));
}

TEST_F(TruSimLink, DisconnectFromSeveralThreadsAtOnce) {
    E6TruSimTiming quick;
    quick.reconnectPause = 100ms;  // the test is not about the pause
    Connect(quick);
    for (int round = 1; round <= 3; ++round) {
        ASSERT_TRUE(Greeted(static_cast<size_t>(round)));
        std::latch start(3);
        {
            std::vector<std::jthread> threads;
            for (int t = 0; t < 2; ++t) {
                threads.emplace_back([&] {
                    start.arrive_and_wait();
                    client.Disconnect();
                });
            }
            threads.emplace_back([&] {
                start.arrive_and_wait();
                for (int i = 0; i < 50; ++i) {
                    client.SendTruSimMessage(E6_GetPingJson());
                }
            });
        }
        EXPECT_FALSE(client.IsSocketOpen());
        ASSERT_TRUE(emulator->WaitForConnections(round + 1, 5s));
    }
    ASSERT_TRUE(Greeted(4));
}

}  // namespace
