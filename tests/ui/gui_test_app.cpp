#include "tests/ui/gui_test_app.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>

#include "tests/support/test_support.h"
#include "tests/support/xvfb_display.h"

namespace orv::test {

QApplication& GuiTestApp() {
    // Qt's own globals are gone by the time static objects are destroyed, so
    // the application ends with the tests, before the display goes.
    struct Environment : ::testing::Environment {
        void TearDown() override {
            app.reset();
            display.reset();
        }
        std::unique_ptr<XvfbDisplay> display;
        std::unique_ptr<QApplication> app;
    };
    static QApplication* app = [] {
        auto* environment = new Environment;
        ::testing::AddGlobalTestEnvironment(environment);  // owned and torn down by GoogleTest
        // The off-screen platform needs no X server.
        if (qgetenv("QT_QPA_PLATFORM") != "offscreen") {
            environment->display = std::make_unique<XvfbDisplay>("1280x1024x24");
        }
        // Qt's own event loop instead of GLib's, whose locking the thread
        // sanitizer cannot see either.
        setenv("QT_NO_GLIB", "1", 1);
        static int argc = 1;
        static char name[] = "orvane-gui-test";
        static char* argv[] = {name, nullptr};
        environment->app = std::make_unique<QApplication>(argc, argv);
        return environment->app.get();
    }();
    return *app;
}

bool ProcessEventsUntil(const std::function<bool()>& condition, std::chrono::milliseconds timeout) {
    return Eventually(
        [&] {
            QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
            return condition();
        },
        timeout, std::chrono::milliseconds(1));
}

}  // namespace orv::test
