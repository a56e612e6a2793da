// Reconnect times with the product's intervals: the simulator stopped and
// restarted on the same port, and the sensor leaving the range and coming back.
//
//   reconnect_bench [rounds]
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <thread>

#include "bench/session/bench_session.h"
#include "tests/support/test_support.h"

namespace {

using namespace std::chrono_literals;
using orv::bench::Fixed;
using orv::bench::SimulatorProcess;

std::string Summary(const std::vector<double>& seconds) {
    return "median " + Fixed(orv::bench::Percentile(seconds, 0.5), 2) + " s" + ", max " +
           Fixed(*std::max_element(seconds.begin(), seconds.end()), 2) + " s" +
           " (n=" + std::to_string(seconds.size()) + ")";
}

}  // namespace

int main(int argc, char** argv) {
    const int rounds = argc > 1 ? std::max(1, std::atoi(argv[1])) : 5;
    orv::bench::BenchSession session(orv::bench::SimulatorKind::StandIn,
                                     std::chrono::milliseconds(3000));
    if (!session.Start()) {
        return 1;
    }

    std::vector<double> simulator;
    for (int i = 0; i < rounds; ++i) {
        const int before = session.simulator->Authentications();
        if (!session.simulator->Stop() ||
            !orv::test::Eventually([&] { return !session.manager->GetE6()->IsAuthenticated(); })) {
            std::fprintf(stderr, "the client did not notice the simulator going\n");
            return 1;
        }
        // Restarts at different points of the client's retry cycle.
        std::this_thread::sleep_for(1500ms + i * 1000ms / rounds);
        const int64_t listening = session.simulator->Start();
        const int64_t authenticated = session.simulator->WaitAuthenticationAfter(before, 10s);
        if (listening == 0 || authenticated == 0) {
            std::fprintf(stderr, "the client did not come back to the simulator\n");
            return 1;
        }
        simulator.push_back(static_cast<double>(authenticated - listening) / 1e9);
        std::fprintf(stderr, "simulator round %d: %.3f s\n", i + 1, simulator.back());
    }

    std::vector<double> sensor;
    for (int i = 0; i < rounds; ++i) {
        session.sensor->DropLink();
        if (!orv::test::Eventually([&] { return session.watch.sensorState.load() != 3; })) {
            std::fprintf(stderr, "the session did not notice the sensor going\n");
            return 1;
        }
        // Comes back at different points of the scan cycle (a 1 s tick, then a 3 s scan).
        std::this_thread::sleep_for(1500ms + i * 4000ms / rounds);
        const int64_t back = SimulatorProcess::Now();
        session.sensor->ComeBack();
        if (!orv::test::Eventually([&] { return session.watch.sensorState.load() == 3; }, 15s,
                                   1ms)) {
            std::fprintf(stderr, "the sensor did not reconnect\n");
            return 1;
        }
        sensor.push_back(static_cast<double>(SimulatorProcess::Now() - back) / 1e9);
        std::fprintf(stderr, "sensor round %d: %.3f s\n", i + 1, sensor.back());
    }

    const double simulatorMax = *std::max_element(simulator.begin(), simulator.end());
    const double sensorMax = *std::max_element(sensor.begin(), sensor.end());
    orv::bench::PrintRow("Simulator reconnect: listening again to client authenticated",
                         Summary(simulator), "< 1.5 s", simulatorMax < 1.5);
    orv::bench::PrintRow("Sensor reconnect: back in range to state 3 reported", Summary(sensor),
                         "< 5 s", sensorMax < 5.0);
    return 0;
}
