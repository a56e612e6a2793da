// Time from a swing record reaching the session to the simulator reading the
// shot, beside the bare loopback TCP time of a small message.
//
//   shot_latency_bench [swings]
#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <thread>

#include "bench/session/bench_session.h"

namespace {

using orv::bench::SimulatorProcess;

// A connected loopback pair: [0] the sender's end, [1] the receiver's end.
bool LoopbackPair(int fds[2]) {
    int port = 0;
    const int listener = orv::bench::ListenOnLoopback(&port);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = htons(static_cast<uint16_t>(port));
    fds[0] = listener >= 0 ? socket(AF_INET, SOCK_STREAM, 0) : -1;
    const bool connected =
        fds[0] >= 0 && connect(fds[0], reinterpret_cast<sockaddr*>(&address), sizeof address) == 0;
    fds[1] = connected ? accept(listener, nullptr, nullptr) : -1;
    if (listener >= 0) {
        close(listener);
    }
    if (fds[1] < 0) {
        std::fprintf(stderr, "loopback pair failed\n");
        return false;
    }
    const int on = 1;
    setsockopt(fds[0], IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
    return true;
}

// Send-to-receive times of a message the size of a short simulator command.
std::vector<double> LoopbackMicros(int count) {
    std::vector<double> times;
    int fds[2];
    if (!LoopbackPair(fds)) {
        return times;
    }
    std::atomic<long long> arrivedNs{0};
    std::atomic<int> arrived{0};
    std::thread receiver([&] {
        char buffer[64];
        while (recv(fds[1], buffer, sizeof buffer, 0) > 0) {
            arrivedNs = SimulatorProcess::Now();
            arrived.fetch_add(1);
            arrived.notify_one();
        }
    });
    static const char message[] = "{\"Type\":\"SendShot\"}";
    for (int i = 0; i < count; ++i) {
        const int before = arrived.load();
        const int64_t sent = SimulatorProcess::Now();
        if (send(fds[0], message, sizeof message, MSG_NOSIGNAL) != sizeof message) {
            break;
        }
        arrived.wait(before);
        times.push_back(static_cast<double>(arrivedNs.load() - sent) / 1000.0);
    }
    shutdown(fds[0], SHUT_RDWR);
    receiver.join();
    close(fds[0]);
    close(fds[1]);
    return times;
}

}  // namespace

int main(int argc, char** argv) {
    const int swings = argc > 1 ? std::max(1, std::atoi(argv[1])) : 5000;
    orv::bench::BenchSession session(orv::bench::SimulatorKind::ShotReader);
    if (!session.Start()) {
        return 1;
    }
    std::vector<double> shots;
    for (int i = 0; i < swings; ++i) {
        const double micros = session.SwingMicros();
        if (micros < 0) {
            std::fprintf(stderr, "swing %d brought no shot\n", i + 1);
            return 1;
        }
        shots.push_back(micros);
    }
    const std::vector<double> loopback = LoopbackMicros(swings);
    using orv::bench::Fixed;
    using orv::bench::Percentile;
    const double shotMedian = Percentile(shots, 0.5), shotP99 = Percentile(shots, 0.99);
    const double bareMedian = Percentile(loopback, 0.5), bareP99 = Percentile(loopback, 0.99);
    const double ratio = bareP99 > 0 ? shotP99 / bareP99 : 0;
    const std::string n = " (n=" + std::to_string(swings) + ")";
    orv::bench::PrintRow(
        "Shot latency: swing record to SendShot read by the simulator",
        "median " + Fixed(shotMedian, 0) + " µs, p99 " + Fixed(shotP99, 0) + " µs" + n,
        "p99 < 1 ms", shotP99 < 1000.0);
    orv::bench::PrintRow(
        "Bare loopback TCP, small message, send to receive",
        "median " + Fixed(bareMedian, 0) + " µs, p99 " + Fixed(bareP99, 0) + " µs" + n,
        "(reference)", true);
    orv::bench::PrintRow("Shot latency / bare loopback (p99 to p99)",
                         Fixed(ratio, 1) + " x" + " (medians " +
                             Fixed(bareMedian > 0 ? shotMedian / bareMedian : 0, 1) + " x" + ")",
                         "< 20 x", ratio > 0 && ratio < 20.0);
    return 0;
}
