#include "bench/session/bench_session.h"

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <thread>

#include "ble/virtual/sensor_frames.h"
#include "ble/virtual/virtual_stack.h"
#include "tests/support/test_support.h"

namespace orv::bench {

using namespace std::chrono_literals;

namespace {

// The virtual radio answers within a millisecond, so the command the session
// sends after each shot is answered before the next swing goes out.
VirtualSensorTiming QuickRadio() {
    VirtualSensorTiming timing;
    timing.answerDelay = 1ms;
    return timing;
}

}  // namespace

BenchSession::BenchSession(SimulatorKind kind, std::chrono::milliseconds rearmDelay)
    : simulator(kind == SimulatorKind::StandIn ? std::make_unique<SimulatorProcess>(rearmDelay)
                                               : nullptr),
      reader(kind == SimulatorKind::ShotReader ? std::make_unique<ShotReader>() : nullptr),
      sensor(std::make_shared<VirtualSensor>("orvane-demo", QuickRadio())),
      swingFrame_(SwingInfoFrame(orv::test::DriverSwing())) {}

BenchSession::~BenchSession() {
    if (manager) {
        manager->Stop();
    }
}

bool BenchSession::Start(std::chrono::seconds timeout) {
    if (simulator && simulator->Start() == 0) {
        std::fprintf(stderr, "the stand-in simulator cannot listen\n");
        return false;
    }
    Orvane::OrvManagerConfig config;
    config.makeBleStack = [sensor = sensor] {
        VirtualPeripheral peripheral;
        peripheral.address = 0xC0DE5E450001;
        peripheral.name = sensor->Name();
        peripheral.sensor = sensor;
        auto stack = std::make_unique<VirtualStack>();
        stack->AddPeripheral(peripheral);
        return std::unique_ptr<BleStack>(std::move(stack));
    };
    config.simulatorAddress = "127.0.0.1";
    config.simulatorPort = simulator ? simulator->Port() : reader->Port();
    manager = std::make_unique<Orvane::OrvManager>();
    manager->SetConfig(config);
    manager->SetCallback(&watch);
    manager->Start();
    if (!orv::test::Eventually([this] { return Ready(); }, timeout)) {
        std::fprintf(stderr, "the session did not come up\n");
        return false;
    }
    return true;
}

bool BenchSession::Ready() const {
    E6TruSimClient* client = manager->GetE6();
    return watch.sensorState.load() == 3 && client != nullptr && client->IsAuthenticated() &&
           client->GetArmState() == 0 && client->GetCurrentClub() != 0;
}

double BenchSession::SwingMicros() {
    // The previous shot's disarm, re-arm and sensor command must be through,
    // so that no swing queues behind the one before it.
    std::this_thread::sleep_for(3ms);
    if (!orv::test::Eventually([this] { return Ready(); }, 5s, 1ms)) {
        return -1;
    }
    // The virtual sensor keeps every frame written to it for tests; not the session's memory.
    sensor->ClearWrittenFrames();
    const int before = simulator ? simulator->Shots() : reader->Shots();
    const int64_t sent = SimulatorProcess::Now();
    manager->OnBthData(swingFrame_.data(), static_cast<uint32_t>(swingFrame_.size()));
    const int64_t read =
        simulator ? simulator->WaitShotAfter(before, 5s) : reader->WaitShotAfter(before, 5s);
    return read == 0 ? -1.0 : static_cast<double>(read - sent) / 1000.0;
}

long ResidentKb() {
    std::ifstream status("/proc/self/status");
    std::string key;
    while (status >> key) {
        if (key == "VmRSS:") {
            long kb = 0;
            status >> kb;
            return kb;
        }
        status.ignore(4096, '\n');
    }
    return 0;
}

double Percentile(std::vector<double> values, double fraction) {
    if (values.empty()) {
        return 0;
    }
    std::sort(values.begin(), values.end());
    const size_t index = std::min(values.size() - 1, static_cast<size_t>(fraction * values.size()));
    return values[index];
}

void PrintRow(const std::string& what, const std::string& measured, const std::string& target,
              bool met) {
    std::printf("| %s | %s | %s | %s |\n", what.c_str(), measured.c_str(), target.c_str(),
                met ? "met" : "**missed**");
    std::fflush(stdout);
}

std::string Fixed(double value, int decimals) {
    char text[64];
    std::snprintf(text, sizeof text, "%.*f", decimals, value);
    return text;
}

}  // namespace orv::bench
