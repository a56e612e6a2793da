// A whole session after 100 and after 10,000 swings: every swing must bring its
// shot, and resident memory, threads and descriptors must stay where they were.
//
//   swing_memory_bench [swings]
#include <algorithm>
#include <cstdio>
#include <cstdlib>

#include "bench/session/bench_session.h"
#include "tests/support/test_support.h"

int main(int argc, char** argv) {
    const int swings = argc > 1 ? std::max(200, std::atoi(argv[1])) : 10000;
    orv::bench::BenchSession session;
    if (!session.Start()) {
        return 1;
    }
    long after100 = 0;
    int threads100 = 0;
    int fds100 = 0;
    for (int i = 1; i <= swings; ++i) {
        if (session.SwingMicros() < 0) {
            std::fprintf(stderr, "swing %d brought no shot\n", i);
            return 1;
        }
        if (i == 100) {
            after100 = orv::bench::ResidentKb();
            threads100 = orv::test::ThreadCount();
            fds100 = orv::test::OpenFdCount();
        }
    }
    const long afterAll = orv::bench::ResidentKb();
    // Noise: allocator arenas and thread stacks settle within a few hundred KiB.
    const long growth = afterAll - after100;
    orv::bench::PrintRow("Resident memory after 100 / " + std::to_string(swings) + " swings",
                         std::to_string(after100) + " KiB / " + std::to_string(afterAll) +
                             " KiB (" + (growth >= 0 ? "+" : "") + std::to_string(growth) + " KiB)",
                         "flat (growth < 512 KiB)", growth < 512);
    const int threads = orv::test::ThreadCount();
    const int fds = orv::test::OpenFdCount();
    orv::bench::PrintRow(
        "Threads / descriptors after 100 and " + std::to_string(swings) + " swings",
        std::to_string(threads100) + " / " + std::to_string(fds100) + " and " +
            std::to_string(threads) + " / " + std::to_string(fds),
        "equal", threads == threads100 && fds == fds100);
    return 0;
}
