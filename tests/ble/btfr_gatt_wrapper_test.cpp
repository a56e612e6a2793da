// The wrapper's state machine on the in-process stack: exact owner
// notifications, log lines, retries and the stop guarantees.
#include "ble/btfr_gatt_wrapper.h"

#include <gtest/gtest.h>

#include "ble/virtual/sensor_gatt_ids.h"
#include "ble/virtual/virtual_stack.h"
#include "common/debug_log.h"
#include "tests/ble/ble_test_helpers.h"
#include "tests/support/test_support.h"

namespace {

using namespace std::chrono_literals;
using orv::test::CountOf;
using orv::test::Eventually;
using States = std::vector<int32_t>;
using Bytes = std::vector<uint8_t>;

constexpr uint64_t kFirst = 0x00A1A2A3A4A5;
constexpr uint64_t kSecond = 0x00B1B2B3B4B5;

VirtualPeripheral Peripheral(uint64_t address, const std::string& name,
                             std::shared_ptr<VirtualSensor> sensor = nullptr) {
    VirtualPeripheral peripheral;
    peripheral.address = address;
    peripheral.name = name;
    peripheral.sensor = sensor ? sensor : QuickSensor(name);
    return peripheral;
}

class WrapperTest : public ::testing::Test {
protected:
    void Build(const std::vector<VirtualPeripheral>& peripherals, VirtualStackFaults faults = {}) {
        VirtualStackTiming timing;
        timing.connect = 5ms;
        timing.foundGap = 1ms;
        auto stack = MakeVirtualStack(peripherals, timing);
        stack->SetFaults(faults);
        stack_ = stack.get();
        wrapper_ = MakeSensorWrapper(std::move(stack), owner_, {20ms, 40ms});
    }

    void TearDown() override {
        if (wrapper_) {
            wrapper_->Stop();
        }
    }

    // Lets `count` supervision ticks pass.
    void WaitTicks(int count) {
        const int start = stack_->OpenPolls();
        ASSERT_TRUE(Eventually([&] { return stack_->OpenPolls() >= start + count; }));
    }

    bool WaitState(int32_t state) {
        return Eventually([&] { return wrapper_->GetState() == state; });
    }

    bool WaitStates(const States& expected) {
        return Eventually([&] { return owner_.States() == expected; });
    }

    RecordingOwner owner_;  // outlives the wrapper
    VirtualStack* stack_ = nullptr;
    std::unique_ptr<BtfrGattWrapper> wrapper_;
};

TEST_F(WrapperTest, ScansConnectsSubscribesAndExchangesFrames) {
    auto sensor = QuickSensor("orvane-demo");
    Build({Peripheral(kFirst, "orvane-demo", sensor)});
    LogCapture log;
    wrapper_->Start();
    ASSERT_TRUE(WaitState(3));
    WaitTicks(3);
    EXPECT_EQ(owner_.States(), (States{1, 2, 3}));

    ASSERT_TRUE(wrapper_->WriteCharacteristic(kFirmwareRequest.data(), 3));
    ASSERT_TRUE(Eventually([&] { return owner_.Received(kFirmwareAnswer); }));
    EXPECT_EQ(sensor->WrittenFrames(), (std::vector<Bytes>{kFirmwareRequest}));

    const std::string text = log.Text();
    EXPECT_NE(text.find("[BtfrGattWrapper::Start("), std::string::npos);
    EXPECT_NE(text.find("BtfrGattWrapper::DoFindDevice("), std::string::npos);
    EXPECT_NE(text.find(")] FindDevice\n"), std::string::npos);
    EXPECT_NE(text.find("[BtfrGattWrapper::wclBthDiscoveringStarted("), std::string::npos);
    EXPECT_NE(text.find(")] wclBthDeviceFound() name:orvane-demo, address:00a1a2a3a4a5\n"),
              std::string::npos);
    EXPECT_NE(text.find(")] wclBthDiscoveringCompleted()\n"), std::string::npos);
    EXPECT_NE(text.find("[BtfrGattWrapper::DoConnect("), std::string::npos);
    EXPECT_NE(text.find(")] Connecting device:00a1a2a3a4a5\n"), std::string::npos);
    EXPECT_NE(text.find("[BtfrGattWrapper::wclGattClientConnect("), std::string::npos);
    EXPECT_NE(text.find(")] wclGattClientConnect ret:00000000\n"), std::string::npos);
}

TEST_F(WrapperTest, LinkLossReportsZeroThenRescansAndReconnects) {
    Build({Peripheral(kFirst, "orvane-demo")});
    wrapper_->Start();
    ASSERT_TRUE(WaitState(3));
    stack_->DropLink();
    ASSERT_TRUE(WaitStates({1, 2, 3, 0, 1, 2, 3}));
    EXPECT_EQ(stack_->DiscoveryCount(), 2);
}

TEST_F(WrapperTest, SensorOutOfRangeIsMissedUntilItComesBack) {
    auto sensor = QuickSensor("orvane-demo");
    Build({Peripheral(kFirst, "orvane-demo", sensor)});
    wrapper_->Start();
    ASSERT_TRUE(WaitState(3));
    sensor->DropLink();
    ASSERT_TRUE(WaitStates({1, 2, 3, 0, 1}));
    const int scans = stack_->DiscoveryCount();
    ASSERT_TRUE(Eventually([&] { return stack_->DiscoveryCount() >= scans + 3; }));
    EXPECT_EQ(stack_->ConnectAttempts().size(), 1u);  // nothing found while away
    sensor->ComeBack();
    ASSERT_TRUE(WaitState(3));
    EXPECT_EQ(owner_.States().back(), 3);
}

TEST_F(WrapperTest, LastFoundDeviceFirstThenTheOtherWithoutNewScan) {
    VirtualStackFaults faults;
    faults.failConnectEvents = 1;  // the first connection attempt fails
    Build({Peripheral(kFirst, "orvane-1"), Peripheral(kSecond, "orvane-2")}, faults);
    wrapper_->Start();
    ASSERT_TRUE(WaitState(3));
    WaitTicks(2);
    // The failed connect returns to 0 silently: 2 follows 2.
    EXPECT_EQ(owner_.States(), (States{1, 2, 2, 3}));
    EXPECT_EQ(stack_->ConnectAttempts(), (std::vector<uint64_t>{kSecond, kFirst}));
    EXPECT_EQ(stack_->DiscoveryCount(), 1);
}

TEST_F(WrapperTest, NameFilterIsACaseSensitiveSubstringOfLeDevices) {
    VirtualPeripheral classic = Peripheral(0x0C0C0C0C0C0C, "orvane-classic");
    classic.type = BleDeviceType::Classic;
    Build({Peripheral(0x0101, "my-orvane-7"), Peripheral(0x0202, "Orvane-X"),
           Peripheral(0x0303, "ORVANE"), classic});
    wrapper_->Start();
    ASSERT_TRUE(WaitState(3));
    EXPECT_EQ(stack_->ConnectAttempts(), (std::vector<uint64_t>{0x0101}));
}

TEST_F(WrapperTest, WithoutUsableRadioStateStaysScanning) {
    for (const bool present : {false, true}) {
        SCOPED_TRACE(present ? "radio switched off" : "no radio");
        VirtualStackFaults faults;
        faults.radioCount = present ? 1 : 0;
        faults.radioUsable = false;
        Build({Peripheral(kFirst, "orvane-demo")}, faults);
        LogCapture log;
        wrapper_->Start();
        ASSERT_TRUE(WaitState(1));
        WaitTicks(5);
        EXPECT_EQ(wrapper_->GetState(), 1);
        EXPECT_EQ(owner_.States(), (States{1}));
        EXPECT_EQ(stack_->DiscoveryCount(), 0);
        EXPECT_EQ(CountOf(log.Text(), "!!! ERROR"), 1u);
        EXPECT_EQ(CountOf(log.Text(), "[BtfrGattWrapper::GetRadio("), 1u);
        EXPECT_EQ(CountOf(log.Text(), ")] No one Bluetooth Radio found.\n"), 1u);
        wrapper_->Stop();
        owner_.Clear();
    }
}

TEST_F(WrapperTest, DiscoveryThatCannotStartIsRetriedSilently) {
    VirtualStackFaults faults;
    faults.failDiscoveryStarts = 2;
    Build({Peripheral(kFirst, "orvane-demo")}, faults);
    LogCapture log;
    wrapper_->Start();
    ASSERT_TRUE(WaitState(3));
    EXPECT_EQ(owner_.States(), (States{1, 1, 1, 2, 3}));
    EXPECT_EQ(CountOf(log.Text(), ")] Error starting discovering: 00051008\n"), 2u);
}

TEST_F(WrapperTest, ConnectCallErrorIsLoggedAndRetried) {
    VirtualStackFaults faults;
    faults.failConnectCalls = 1;
    Build({Peripheral(kFirst, "orvane-demo")}, faults);
    LogCapture log;
    wrapper_->Start();
    ASSERT_TRUE(WaitState(3));
    // The only found device was used up by the failed attempt: scan again.
    EXPECT_EQ(owner_.States(), (States{1, 2, 1, 2, 3}));
    EXPECT_EQ(CountOf(log.Text(), ")] Connect error:00051008\n"), 1u);
    EXPECT_EQ(CountOf(log.Text(), ")] wclGattClientConnect ret:00000000\n"), 1u);
}

TEST_F(WrapperTest, MissingServiceOrNotifiableCharacteristicDisconnectsEveryTime) {
    VirtualPeripheral noService = Peripheral(kFirst, "orvane-bare");
    noService.services.pop_back();
    VirtualPeripheral noNotify = Peripheral(kSecond, "orvane-mute");
    noNotify.services.back().characteristics.back().notify = false;
    for (const VirtualPeripheral& peripheral : {noService, noNotify}) {
        SCOPED_TRACE(peripheral.name);
        Build({peripheral});
        LogCapture log;
        wrapper_->Start();
        ASSERT_TRUE(Eventually([&] { return owner_.States().size() >= 6; }));
        const States states = owner_.States();
        for (size_t i = 0; i < states.size(); ++i) {
            ASSERT_EQ(states[i], (States{1, 2, 0}[i % 3])) << ::testing::PrintToString(states);
        }
        EXPECT_GE(stack_->DisconnectCount(), 2);
        const bool serviceMissing = peripheral.name == "orvane-bare";
        EXPECT_EQ(log.Text().find(")] GetService return false\n") != std::string::npos,
                  serviceMissing);
        EXPECT_NE(log.Text().find("[BtfrGattWrapper::Disconnect("), std::string::npos);
        wrapper_->Stop();
        owner_.Clear();
    }
}

TEST_F(WrapperTest, ShortIdentifiersAreSkippedWhenChoosingTheSubscription) {
    VirtualPeripheral peripheral = Peripheral(kFirst, "orvane-demo");
    // A notifiable 16-bit characteristic first: never the one subscribed.
    std::vector<VirtualCharacteristic> characteristics{
        {GattUuid::FromShort(0x2A05), false, false, true}};
    for (const VirtualCharacteristic& c : peripheral.services.back().characteristics) {
        characteristics.push_back(c);
    }
    peripheral.services.back().characteristics = characteristics;
    auto sensor = peripheral.sensor;
    Build({peripheral});
    wrapper_->Start();
    ASSERT_TRUE(WaitState(3));
    sensor->SendLrSignal(1, 2);
    EXPECT_TRUE(Eventually([&] { return owner_.Received({0x0F, 0x02, 0x01, 0x02, 0x0E}); }));
}

TEST_F(WrapperTest, NotificationSetUpRetriesFiveTimesEach) {
    struct Case {
        int configFailures;
        int subscribeFailures;
        bool connects;
    };
    for (const Case& c :
         {Case{4, 0, true}, Case{5, 0, false}, Case{0, 4, true}, Case{0, 5, false}}) {
        SCOPED_TRACE(::testing::Message() << c.configFailures << "/" << c.subscribeFailures);
        VirtualStackFaults faults;
        faults.failClientConfigurations = c.configFailures;
        faults.failSubscribes = c.subscribeFailures;
        Build({Peripheral(kFirst, "orvane-demo")}, faults);
        LogCapture log;
        wrapper_->Start();
        ASSERT_TRUE(WaitState(3));
        EXPECT_EQ(owner_.States(), (c.connects ? States{1, 2, 3} : States{1, 2, 0, 1, 2, 3}));
        const std::string text = log.Text();
        EXPECT_EQ(CountOf(text, ")] WriteClientConfiguration fail. error:00051008\n"),
                  static_cast<size_t>(c.configFailures));
        EXPECT_EQ(CountOf(text, ")] Subscribe fail. error:00051008\n"),
                  static_cast<size_t>(c.subscribeFailures));
        EXPECT_EQ(CountOf(text, "[BtfrGattWrapper::GetDescriptor("),
                  static_cast<size_t>(c.configFailures + c.subscribeFailures));
        wrapper_->Stop();
        owner_.Clear();
    }
}

TEST_F(WrapperTest, FailedWriteDisconnectsAndTheLinkComesBack) {
    Build({Peripheral(kFirst, "orvane-demo")});
    LogCapture log;
    wrapper_->Start();
    ASSERT_TRUE(WaitState(3));
    VirtualStackFaults faults;
    faults.failWrites = 1;
    stack_->SetFaults(faults);
    EXPECT_FALSE(wrapper_->WriteCharacteristic(kFirmwareRequest.data(), 3));
    ASSERT_TRUE(WaitStates({1, 2, 3, 0, 1, 2, 3}));
    EXPECT_EQ(stack_->UnsubscribeCount(), 1);
    const std::string text = log.Text();
    EXPECT_EQ(CountOf(text, "[BtfrGattWrapper::WriteCharacteristic("), 1u);
    EXPECT_EQ(CountOf(text, ")] Call disconnect(WriteCharacteristicValue)\n"), 1u);
    EXPECT_EQ(CountOf(text, ")] Disconnect()\n"), 1u);
    EXPECT_EQ(CountOf(text, ")] wclGattClientDisconnect reson:0005100c\n"), 1u);
}

TEST_F(WrapperTest, WriteWhileNotConnectedFailsWithoutDisconnecting) {
    Build({});
    wrapper_->SetTiming({std::chrono::seconds(10), 20ms});  // idle after the first scan
    LogCapture log;
    wrapper_->Start();
    ASSERT_TRUE(
        Eventually([&] { return stack_->DiscoveryCount() == 1 && wrapper_->GetState() == 0; }));
    EXPECT_FALSE(wrapper_->WriteCharacteristic(kFirmwareRequest.data(), 3));
    wrapper_->Stop();
    EXPECT_FALSE(wrapper_->WriteCharacteristic(kFirmwareRequest.data(), 3));
    const std::string text = log.Text();
    EXPECT_EQ(CountOf(text, ")] Call disconnect(WriteCharacteristicValue)\n"), 1u);
    EXPECT_EQ(CountOf(text, ")] Disconnect()\n"), 0u);
}

TEST_F(WrapperTest, StopTwiceAndNoCallbackAfterStop) {
    auto sensor = QuickSensor("orvane-demo");
    Build({Peripheral(kFirst, "orvane-demo", sensor)});
    wrapper_->Start();
    ASSERT_TRUE(WaitState(3));
    // Notifications keep coming while the wrapper stops.
    sensor->Flood(kFirmwareAnswer, 2000, 400);
    ASSERT_TRUE(Eventually([&] { return owner_.DataCount() > 10; }));
    {
        LogCapture log;
        wrapper_->Stop();
        const size_t calls = owner_.CallCount();
        wrapper_->Stop();
        EXPECT_EQ(CountOf(log.Text(), "[BtfrGattWrapper::Stop("), 3u);  // Start, End, Start
        EXPECT_EQ(CountOf(log.Text(), ")] End\n"), 1u);
        EXPECT_EQ(wrapper_->GetState(), 0);
        const uint64_t sent = sensor->NotificationsSent();
        std::this_thread::sleep_for(30ms);  // room for a stray callback to show up
        EXPECT_EQ(owner_.CallCount(), calls);
        EXPECT_EQ(sensor->NotificationsSent(), sent);
    }
    // A stopped wrapper starts again from 0.
    wrapper_->Start();
    ASSERT_TRUE(WaitState(3));
}

TEST_F(WrapperTest, PairingRequestsGetTheFixedAnswers) {
    Build({Peripheral(kFirst, "orvane-demo")});
    LogCapture log;
    wrapper_->Start();
    ASSERT_TRUE(WaitState(3));
    uint32_t passkey = 0;
    ASSERT_TRUE(stack_->AskPasskey(passkey));
    EXPECT_EQ(passkey, 482913u);
    std::string pin;
    ASSERT_TRUE(stack_->AskPin(pin));
    EXPECT_EQ(pin, "7316");
    bool confirm = false;
    ASSERT_TRUE(stack_->AskConfirmation(123456, confirm));
    EXPECT_TRUE(confirm);
    const std::string text = log.Text();
    EXPECT_NE(text.find("[BtfrGattWrapper::wclBthPasskeyRequest("), std::string::npos);
    EXPECT_NE(text.find(")] wclBthPasskeyRequest Pass key: 482913\n"), std::string::npos);
    EXPECT_NE(text.find("[BtfrGattWrapper::wclBthPinRequest("), std::string::npos);
    EXPECT_NE(text.find(")] wclBthPinRequest Pin: 7316\n"), std::string::npos);
}

}  // namespace

namespace {

TEST(DemoStack, OffersOneAnsweringSensorNamedOrvaneDemo) {
    RecordingOwner owner;
    auto wrapper = MakeSensorWrapper(MakeDemoStack(), owner, {20ms, 40ms});
    wrapper->Start();
    ASSERT_TRUE(Eventually([&] { return wrapper->GetState() == 3; }));
    ASSERT_TRUE(wrapper->WriteCharacteristic(kFirmwareRequest.data(), 3));
    const Bytes clubRequest = {0x0C, 0x00, 0x0C};
    ASSERT_TRUE(wrapper->WriteCharacteristic(clubRequest.data(), 3));
    EXPECT_TRUE(Eventually([&] { return owner.Received(kFirmwareAnswer); }));
    EXPECT_TRUE(Eventually([&] { return owner.Received({0x01, 0x01, 0x01, 0x01}); }));
    wrapper->Stop();
}

}  // namespace
