// A whole window session with video: the main window under an X server, the
// test picture as camera, preview, recording and replay on, the virtual
// sensor swinging through its test controls and the stand-in simulator in a
// child process. Resident memory, CPU per swing, threads and descriptors.
//
//   video_session_bench [swings [log]]   (300 swings by default; "log": debug log on stdout)
#include <sys/resource.h>

#include <QApplication>
#include <QEventLoop>
#include <QTimer>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <memory>

#include "app/main_dlg.h"
#include "bench/session/bench_session.h"
#include "ble/virtual/virtual_stack.h"
#include "common/debug_log.h"
#include "common/settings.h"
#include "common/speech.h"
#include "tests/support/test_support.h"
#include "tests/support/xvfb_display.h"
#include "video/player_wnd.h"

namespace {

using namespace std::chrono_literals;

double CpuSeconds() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return static_cast<double>(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec) +
           static_cast<double>(usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) / 1e6;
}

size_t Entries(const char* folder) {
    const auto entries = std::filesystem::directory_iterator(folder);
    return static_cast<size_t>(std::distance(begin(entries), end(entries)));
}

// Runs the event loop, idle between checks, until `condition` holds.
bool PumpUntil(const std::function<bool()>& condition, std::chrono::milliseconds timeout) {
    QEventLoop loop;
    QTimer check;
    QObject::connect(&check, &QTimer::timeout, [&] {
        if (condition()) {
            loop.quit();
        }
    });
    QTimer::singleShot(timeout, &loop, &QEventLoop::quit);
    check.start(10);
    if (!condition()) {
        loop.exec();
    }
    return condition();
}

struct Sample {
    long residentKb = 0;
    size_t threads = 0;
    size_t descriptors = 0;
};

// Once the last clip's delayed stop has ended and GLib's pool has let its
// idle streaming threads go: the thread count has not changed for 3 s.
Sample Measure() {
    size_t threads = Entries("/proc/self/task");
    auto steadySince = std::chrono::steady_clock::now();
    PumpUntil(
        [&] {
            const size_t now = Entries("/proc/self/task");
            if (now != threads) {
                threads = now;
                steadySince = std::chrono::steady_clock::now();
            }
            return std::chrono::steady_clock::now() - steadySince > 3s;
        },
        30s);
    return {orv::bench::ResidentKb(), threads, Entries("/proc/self/fd")};
}

}  // namespace

int main(int argc, char** argv) {
    const int swings = argc > 1 ? std::max(21, std::atoi(argv[1])) : 300;
    // Forked before any thread starts; it arms again 200 ms after each shot.
    orv::bench::SimulatorProcess simulator(200ms);
    std::unique_ptr<orv::test::XvfbDisplay> display;
    if (std::getenv("DISPLAY") == nullptr) {
        display = std::make_unique<orv::test::XvfbDisplay>();
    }
    QApplication app(argc, argv);
    if (argc > 2) {
        ShowLog(true, false);
    }
    if (simulator.Start() == 0) {
        std::fprintf(stderr, "the stand-in simulator cannot listen\n");
        return 1;
    }
    orv::test::TempDir folder;
    std::ofstream(folder.path() / "settings.ini") << "[Camera]\nShowPreview=1\nRecording=1\n";
    OrvSettings::GetInstanceIn(folder.path());

    // Short swing steps keep each clip (and its replay) about half a second long.
    VirtualSensorTiming radio;
    radio.answerDelay = 1ms;
    radio.stepGap = 150ms;
    auto sensor = std::make_shared<VirtualSensor>("orvane-demo", radio);
    orv::MainDlgOptions options;
    options.demo = true;
    options.checkVersion = false;
    options.session.makeBleStack = [sensor] {
        VirtualPeripheral peripheral;
        peripheral.address = 0xC0DE5E450001;
        peripheral.name = sensor->Name();
        peripheral.sensor = sensor;
        return std::unique_ptr<BleStack>(MakeVirtualStack({peripheral}));
    };
    options.session.simulatorAddress = "127.0.0.1";
    options.session.simulatorPort = simulator.Port();
    auto dialog = std::make_unique<orv::CMainDlg>(options);
    dialog->OnInitDialog();
    dialog->show();

    Orvane::OrvManager* manager = Orvane::OrvManager::GetInstance();
    const auto ready = [manager] {
        E6TruSimClient* client = manager->GetE6();
        return manager->GetState().linkAlive.load() && client != nullptr &&
               client->IsAuthenticated() && client->GetArmState() == 0 &&
               client->GetCurrentClub() != 0;
    };
    PlayerWnd* player = PlayerWnd::GetInstance();
    const auto replaying = [player] { return player->Window()->isVisible(); };
    Sample first, after20;
    double cpuAfter20 = 0;
    auto lastShot = std::chrono::steady_clock::now() - 1h;
    for (int i = 1; i <= swings; ++i) {
        // A clip runs on for 2 s after its swing and is then stopped, whichever
        // clip is running by then: the next swing waits for that.
        const auto afterDelayedStop = [&] {
            return std::chrono::steady_clock::now() - lastShot > 2100ms;
        };
        if (!PumpUntil([&] { return ready() && afterDelayedStop(); }, 20s)) {
            std::fprintf(stderr, "swing %d: the session is not ready\n", i);
            return 1;
        }
        sensor->ClearWrittenFrames();  // kept for tests; not the program's memory
        sensor->TriggerSwing(orv::test::DriverSwing());
        if (!PumpUntil([&] { return simulator.Shots() >= i && replaying(); }, 20s)) {
            std::fprintf(stderr, "swing %d: no shot or no replay\n", i);
            return 1;
        }
        lastShot = std::chrono::steady_clock::now();
        // Every other replay runs to its end; the others are cut short by the
        // next swing, as a golfer who swings again at once does.
        if (i % 2 == 1 || i == 1 || i == 20 || i == swings) {
            PumpUntil([&] { return !replaying(); }, 20s);
        }
        if (i == 1) {
            first = Measure();
        } else if (i == 20) {
            after20 = Measure();
            cpuAfter20 = CpuSeconds();
        }
    }
    const double cpuPerSwing = (CpuSeconds() - cpuAfter20) * 1000.0 / (swings - 20);
    const Sample last = Measure();
    const long growth = last.residentKb - after20.residentKb;
    namespace b = orv::bench;
    b::PrintRow("Window session with video: resident memory after 20 / " + std::to_string(swings) +
                    " swings",
                b::Fixed(after20.residentKb / 1024.0, 1) + " MB / " +
                    b::Fixed(last.residentKb / 1024.0, 1) + " MB (" + (growth >= 0 ? "+" : "") +
                    b::Fixed(growth / 1024.0, 1) + " MB)",
                "growth < 10 MB", growth < 10 * 1024);
    b::PrintRow("Window session with video: CPU time per swing", b::Fixed(cpuPerSwing, 0) + " ms",
                "(reported)", true);
    b::PrintRow(
        "Window session with video: threads / descriptors after the first and the last swing",
        std::to_string(first.threads) + " / " + std::to_string(first.descriptors) + " and " +
            std::to_string(last.threads) + " / " + std::to_string(last.descriptors),
        "equal", first.threads == last.threads && first.descriptors == last.descriptors);

    // As the window's closing does: the session first, then the window and its video.
    TTS_DeInit();
    Orvane::OrvManager::ReleaseInstance();
    OrvSettings::ReleaseInstance();
    dialog.reset();
    return 0;
}
