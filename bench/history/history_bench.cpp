// What keeping every shot costs: the shot latency with the history writer on
// beside the same session with it off, rows written per second, and the
// per-club figures over 100,000 shots.
//
//   history_bench [swings]
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <thread>

#include "bench/session/bench_session.h"
#include "history/history_store.h"
#include "history/history_writer.h"

namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

double SecondsSince(Clock::time_point start) {
    return std::chrono::duration<double>(Clock::now() - start).count();
}

Orvane::ShotReport Shot(int i) {
    Orvane::ShotReport shot;
    shot.wallTimeMs = 1795003200000 + i;
    shot.club = 1 + i % 14;
    shot.sensorClub = shot.club;
    shot.clubName = "Driver";
    shot.headSpeed = 80 + i % 20;
    shot.ball = {12.0, -1.0 + i % 3, 120.0 + i % 17, 2500.0 + i % 300, -200.0 + i % 400};
    shot.clubData = {shot.headSpeed, 1.0, -2.0};
    shot.clip = "/home/golfer/.config/Orvane X/MyRecord" + std::to_string(i % 10) + ".mp4";
    return shot;
}

}  // namespace

int main(int argc, char** argv) {
    const int swings = argc > 1 ? std::max(100, std::atoi(argv[1])) : 4000;
    const fs::path folder =
        fs::temp_directory_path() / ("history_bench." + std::to_string(getpid()));
    fs::create_directories(folder);
    using orv::bench::Fixed;
    using orv::bench::PrintRow;

    {
        // Latency in alternating blocks, so the machine's drift hits both alike.
        // Swings come 20 ms apart: still a hundred times a golfer's pace, but the
        // writer's row is done before the next swing, as it is in play; back to
        // back, the bench would measure two cores shared, not the shot's path.
        orv::bench::BenchSession session(orv::bench::SimulatorKind::ShotReader);
        if (!session.Start()) {
            return 1;
        }
        orv::history::HistoryWriter writer(folder / "latency.db");
        writer.Start();
        std::vector<double> off, on;
        for (int block = 0; block < 2 * swings / 250; ++block) {
            const bool withHistory = block % 2 == 1;
            session.manager->SetShotListener(withHistory ? &writer : nullptr);
            for (int i = 0; i < 250; ++i) {
                std::this_thread::sleep_for(std::chrono::milliseconds(20));
                const double micros = session.SwingMicros();
                if (micros < 0) {
                    std::fprintf(stderr, "a swing brought no shot\n");
                    return 1;
                }
                (withHistory ? on : off).push_back(micros);
            }
        }
        session.manager->SetShotListener(nullptr);
        writer.Stop();
        const double p99Off = orv::bench::Percentile(off, 0.99);
        const double p99On = orv::bench::Percentile(on, 0.99);
        PrintRow("Shot latency p99, history on / off",
                 Fixed(p99On, 0) + " µs / " + Fixed(p99Off, 0) +
                     " µs (n=" + std::to_string(on.size()) + " each)",
                 "on within 10 % of off", p99On <= p99Off * 1.10);
    }
    {
        auto store = orv::history::HistoryStore::Open(folder / "inserts.db");
        const int64_t session = store ? store->BeginSession(0) : -1;
        const auto start = Clock::now();
        constexpr int kRows = 100000;
        for (int i = 0; i < kRows && session > 0; ++i) {
            store->Insert(session, Shot(i));
        }
        const double seconds = SecondsSince(start);
        PrintRow("History rows written per second (one transaction each, WAL)",
                 Fixed(kRows / seconds, 0) + " rows/s", "(reported)", session > 0);
        std::vector<double> millis;
        for (int i = 0; i < 20 && session > 0; ++i) {
            const auto queryStart = Clock::now();
            const auto figures = store->Figures({});
            millis.push_back(SecondsSince(queryStart) * 1000.0);
            if (figures.size() != 14) {
                std::fprintf(stderr, "figures for %zu clubs\n", figures.size());
                return 1;
            }
        }
        const double median = orv::bench::Percentile(millis, 0.5);
        const double worst = *std::max_element(millis.begin(), millis.end());
        PrintRow("History figures per club over 100,000 shots",
                 "median " + Fixed(median, 1) + " ms, max " + Fixed(worst, 1) + " ms (n=20)",
                 "< 50 ms", worst < 50.0);
    }
    fs::remove_all(folder);
    return 0;
}
