// Records the test pattern into the file named on the command line, says
// "recording" on standard output and waits to be killed: a program that dies
// in the middle of a clip.
#include <QApplication>

#include <cstdio>
#include <thread>

#include "tests/video/video_test_support.h"
#include "video/preview_wnd.h"

int main(int argc, char** argv) {
    if (argc < 2) {
        return 2;
    }
    QApplication app(argc, argv);
    PreviewWnd preview(orv::test::TestSources());
    if (!preview.Create(nullptr) || !preview.StartPreview(kHideWindow) ||
        Failed(preview.GetCaptureManager()->StartRecord(argv[1]))) {
        return 1;
    }
    std::printf("recording\n");
    std::fflush(stdout);
    while (true) {
        QApplication::processEvents(QEventLoop::AllEvents, 100);
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
}
