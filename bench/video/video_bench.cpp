// Measures the capture path with the live test pattern standing in for a
// camera: time from a start to the first encoded frame, time for a stop to
// finalise the file, and the CPU this process spends on preview alone and on
// preview plus recording. Runs on its own X server when none is given.
//
//   video_bench [seconds-per-cpu-phase] [recordings] [camera-width camera-height]
#include <sys/resource.h>

#include <QApplication>
#include <QEventLoop>
#include <QTimer>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <regex>
#include <string>
#include <vector>

#include "common/clock.h"
#include "common/debug_log.h"
#include "tests/support/test_support.h"
#include "tests/support/xvfb_display.h"
#include "video/preview_wnd.h"

namespace {

using Clock = std::chrono::steady_clock;

double CpuSeconds() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return static_cast<double>(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec) +
           static_cast<double>(usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) / 1e6;
}

// Runs the GUI event loop (idle, not spinning) for `duration`.
void Pump(std::chrono::milliseconds duration) {
    QEventLoop loop;
    QTimer::singleShot(duration, &loop, &QEventLoop::quit);
    loop.exec();
}

// Percent of one core used by this process while `phase` runs for `seconds`.
template <typename Phase>
double CpuPercent(int seconds, Phase phase) {
    const double cpu = CpuSeconds();
    const auto start = Clock::now();
    phase(std::chrono::seconds(seconds));
    const double wall = std::chrono::duration<double>(Clock::now() - start).count();
    return 100.0 * (CpuSeconds() - cpu) / wall;
}

// The stamp of the last "Recording Started" line in the log.
long long LastStartStamp(const std::string& log) {
    static const std::regex line(R"(\[(\d+)\] \[[^\]]*\] Recording Started\n)");
    long long stamp = 0;
    for (auto it = std::sregex_iterator(log.begin(), log.end(), line); it != std::sregex_iterator();
         ++it) {
        stamp = std::stoll((*it)[1]);
    }
    return stamp;
}

void PrintSeries(const char* name, std::vector<double> values) {
    std::sort(values.begin(), values.end());
    std::fprintf(stderr, "%-34s min %6.1f  median %6.1f  max %6.1f ms  (n=%zu)\n", name,
                 values.front(), values[values.size() / 2], values.back(), values.size());
}

}  // namespace

int main(int argc, char** argv) {
    const int phaseSeconds = argc > 1 ? std::max(1, std::atoi(argv[1])) : 10;
    const int recordings = argc > 2 ? std::max(1, std::atoi(argv[2])) : 20;
    const int width = argc > 4 ? std::atoi(argv[3]) : 640;
    const int height = argc > 4 ? std::atoi(argv[4]) : 480;
    std::unique_ptr<orv::test::XvfbDisplay> display;
    if (std::getenv("DISPLAY") == nullptr) {
        display = std::make_unique<orv::test::XvfbDisplay>();
    }
    QApplication app(argc, argv);
    orv::test::TempDir dir;
    CaptureSources sources;
    sources.camera = CameraSource::TestPattern(width, height, 30);
    sources.microphone = MicrophoneSource();
    PreviewWnd preview(sources);
    if (!preview.Create(nullptr) || !preview.StartPreview(kShowWindow)) {
        std::fprintf(stderr, "preview failed\n");
        return 1;
    }
    CaptureManager* capture = preview.GetCaptureManager();
    Pump(std::chrono::seconds(1));

    const double previewCpu = CpuPercent(phaseSeconds, [](auto d) { Pump(d); });
    const std::string clip = (dir.path() / "bench.mp4").string();
    const double recordCpu = CpuPercent(phaseSeconds, [&](auto d) {
        capture->StartRecord(clip);
        Pump(d);
        capture->StopRecord();
    });

    std::vector<double> firstFrame, startCall, stop;
    for (int i = 0; i < recordings; ++i) {
        orv::test::StdoutCapture out;
        ShowLog(true, false);
        const long long before = WallClockMs();
        auto t0 = Clock::now();
        capture->StartRecord(clip);
        startCall.push_back(std::chrono::duration<double, std::milli>(Clock::now() - t0).count());
        Pump(std::chrono::milliseconds(500));
        t0 = Clock::now();
        capture->StopRecord();
        stop.push_back(std::chrono::duration<double, std::milli>(Clock::now() - t0).count());
        ShowLog(false, false);
        firstFrame.push_back(static_cast<double>(LastStartStamp(out.Text()) - before));
    }
    const FrameSize size = CachedPreferredFrameSize();
    std::fprintf(stderr, "camera: test pattern %dx%d@30, recorded at %dx%d, %s\n", width, height,
                 size.width, size.height, display ? "own Xvfb" : "given display");
    std::fprintf(stderr,
                 "CPU (this process, one core = 100%%): preview %.1f %%, "
                 "preview + recording %.1f %%\n",
                 previewCpu, recordCpu);
    PrintSeries("StartRecord call", startCall);
    PrintSeries("start to first encoded frame", firstFrame);
    PrintSeries("stop to finalised file", stop);
    return 0;
}
