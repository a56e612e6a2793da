// CPU and resident memory of a connected session that sees no swings: the
// sensor and the simulator are both up, nothing happens. The simulator runs in
// a child process, so this process's usage is the program's alone.
//
//   idle_cpu_bench [seconds]
#include <sys/resource.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <thread>

#include "bench/session/bench_session.h"

namespace {

double CpuSeconds() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return static_cast<double>(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec) +
           static_cast<double>(usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) / 1e6;
}

}  // namespace

int main(int argc, char** argv) {
    const int seconds = argc > 1 ? std::max(1, std::atoi(argv[1])) : 60;
    orv::bench::BenchSession session;
    if (!session.Start()) {
        return 1;
    }
    // Let the start-up exchange (firmware, club, battery, time sync) settle.
    std::this_thread::sleep_for(std::chrono::seconds(2));
    const double cpuBefore = CpuSeconds();
    const int64_t start = orv::bench::SimulatorProcess::Now();
    std::this_thread::sleep_for(std::chrono::seconds(seconds));
    const double wall = static_cast<double>(orv::bench::SimulatorProcess::Now() - start) / 1e9;
    const double percent = 100.0 * (CpuSeconds() - cpuBefore) / wall;
    const bool linksUp = session.Ready();
    orv::bench::PrintRow(
        "Idle CPU, session connected, no swings (" + std::to_string(seconds) + " s window)",
        orv::bench::Fixed(percent, 3) + " % of one core" + (linksUp ? "" : " (links went down)"),
        "< 0.5 %", percent < 0.5 && linksUp);
    orv::bench::PrintRow("Resident memory, idle session",
                         std::to_string(orv::bench::ResidentKb()) + " KiB", "(reported)", true);
    return 0;
}
