// The wrapper's state machine on the in-process stack: exact owner
// notifications, log lines and retries.
#include "ble/btfr_gatt_wrapper.h"

#include <gtest/gtest.h>

#include "ble/virtual/virtual_stack.h"
#include "tests/ble/ble_test_helpers.h"

namespace {

using namespace std::chrono_literals;
using orv::test::CountOf;
using orv::test::Eventually;
using States = std::vector<int32_t>;
using Addresses = std::vector<uint64_t>;
// Log lines and how often each shows (0: at least once).
using Lines = std::vector<std::pair<std::string, size_t>>;

constexpr uint64_t kFirst = 0x00A1A2A3A4A5;
constexpr uint64_t kSecond = 0x00B1B2B3B4B5;

VirtualPeripheral Peripheral(uint64_t address, const std::string& name) {
    return {.address = address, .name = name, .sensor = QuickSensor(name)};
}

// From Start to a subscribed link: which device is taken, what the owner
// hears and the log lines that tell the faults apart.
TEST(WrapperTest, ReachesTheSensorThroughFaults) {
    VirtualPeripheral classic = Peripheral(0x0C0C, "orvane-classic");
    classic.type = BleDeviceType::Classic;
    VirtualPeripheral shortFirst = Peripheral(kFirst, "orvane-demo");
    // A notifiable 16-bit characteristic first: never the one subscribed.
    auto& list = shortFirst.services.back().characteristics;
    list.insert(list.begin(), {GattUuid::FromShort(0x2A05), false, false, true});
    const auto demo = std::vector{Peripheral(kFirst, "orvane-demo")};
    // 261 two-byte characters: the filter keeps 260 characters, not bytes.
    std::string e260;
    for (int i = 0; i < 260; ++i) {
        e260 += "\xC3\xA9";
    }
    const std::string err = " error:00051008\n";
    struct Case {
        const char* name;
        std::vector<VirtualPeripheral> peripherals;
        VirtualStackFaults faults;
        std::string filter;  // empty: "orvane"
        States states;
        Addresses connects;
        int scans;
        Lines lines;
    };
    // clang-format off
    const Case cases[] = {
        {"plain", {shortFirst}, {}, "", {1, 2, 3}, {kFirst}, 1,
         {{")] FindDevice\n", 0}, {")] wclBthDiscoveringCompleted()\n", 0},
          {")] wclBthDeviceFound() name:orvane-demo, address:00a1a2a3a4a5\n", 1},
          {")] Connecting device:00a1a2a3a4a5\n", 1}, {")] wclGattClientConnect ret:00000000\n", 1}}},
        {"case-sensitive substring of LE names",
         {Peripheral(0x0101, "my-orvane-7"), Peripheral(0x0202, "Orvane-X"),
          Peripheral(0x0303, "ORVANE"), classic},
         {}, "", {1, 2, 3}, {0x0101}, 1, {{")] Connecting device:000000000101\n", 1}}},
        {"long filter", {Peripheral(0x0101, e260), Peripheral(0x0202, e260.substr(2) + "-")},
         {}, e260 + "!", {1, 2, 3}, {0x0101}, 1, {}},
        {"last found first, the other without a new scan",
         {Peripheral(kFirst, "orvane-1"), Peripheral(kSecond, "orvane-2")},
         {.failConnectEvents = 1}, "", {1, 2, 2, 3}, {kSecond, kFirst}, 1,
         {{")] wclGattClientConnect ret:00000000\n", 1}}},
        {"discovery refused twice", demo, {.failDiscoveryStarts = 2}, "",
         {1, 1, 1, 2, 3}, {kFirst}, 1, {{")] Error starting discovering: 00051008\n", 2}}},
        {"connect call refused", demo, {.failConnectCalls = 1}, "",
         {1, 2, 1, 2, 3}, {kFirst, kFirst}, 2,
         {{")] Connect error:00051008\n", 1}, {")] wclGattClientConnect ret:00000000\n", 1}}},
        {"4 descriptor failures", demo, {.failClientConfigurations = 4}, "",
         {1, 2, 3}, {kFirst}, 1, {{")] WriteClientConfiguration fail." + err, 4}}},
        {"5 descriptor failures", demo, {.failClientConfigurations = 5}, "",
         {1, 2, 0, 1, 2, 3}, {kFirst, kFirst}, 2,
         {{")] WriteClientConfiguration fail." + err, 5}, {"[BtfrGattWrapper::GetDescriptor(", 5}}},
        {"4 subscribe failures", demo, {.failSubscribes = 4}, "",
         {1, 2, 3}, {kFirst}, 1, {{")] Subscribe fail." + err, 4}}},
        {"5 subscribe failures", demo, {.failSubscribes = 5}, "",
         {1, 2, 0, 1, 2, 3}, {kFirst, kFirst}, 2,
         {{")] Subscribe fail." + err, 5}, {"[BtfrGattWrapper::GetDescriptor(", 5}}},
    };
    // clang-format on
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        WrapperRig rig;
        auto stack = MakeVirtualStack(c.peripherals, {.connect = 5ms, .foundGap = 1ms});
        stack->SetFaults(c.faults);
        const VirtualStack& radio = *stack;
        rig.wrapper = MakeSensorWrapper(std::move(stack), rig.owner, {20ms, 40ms});
        if (!c.filter.empty()) {
            rig.wrapper->SetDeviceNameFilter(c.filter);
        }
        LogCapture log;
        rig.wrapper->Start();
        ASSERT_TRUE(rig.WaitState(3));
        // Two more supervision ticks: nothing changes.
        const int polls = radio.OpenPolls();
        ASSERT_TRUE(Eventually([&] { return radio.OpenPolls() >= polls + 2; }));
        EXPECT_EQ(rig.owner.States(), c.states);
        EXPECT_EQ(radio.ConnectAttempts(), c.connects);
        EXPECT_EQ(radio.DiscoveryCount(), c.scans);
        for (const auto& [line, count] : c.lines) {
            const size_t seen = CountOf(log.Text(), line);
            EXPECT_TRUE(count == 0 ? seen > 0 : seen == count) << line << " seen " << seen;
        }
        // The subscription carries the sensor's answers.
        EXPECT_TRUE(rig.Answers());
    }
}

}  // namespace
