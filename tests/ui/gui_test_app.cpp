#include "tests/ui/gui_test_app.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>

#include "tests/support/test_support.h"
#include "tests/support/xvfb_display.h"

namespace orv::test {

namespace {

// Qt's own globals are gone by the time static objects are destroyed, so the
// application ends with the tests, before the display goes.
class GuiEnvironment : public ::testing::Environment {
public:
    QApplication& App() {
        if (!app_) {
            // The off-screen platform needs no X server.
            if (qgetenv("QT_QPA_PLATFORM") != "offscreen") {
                display_ = std::make_unique<XvfbDisplay>("1280x1024x24");
            }
            // Qt's own event loop instead of GLib's, whose locking the
            // thread sanitizer cannot see either.
            setenv("QT_NO_GLIB", "1", 1);
            app_ = std::make_unique<QApplication>(argc_, argv_);
        }
        return *app_;
    }
    void TearDown() override {
        app_.reset();
        display_.reset();
    }

private:
    int argc_ = 1;
    char name_[16] = "orvane-gui-test";
    char* argv_[2] = {name_, nullptr};
    std::unique_ptr<XvfbDisplay> display_;
    std::unique_ptr<QApplication> app_;
};

}  // namespace

QApplication& GuiTestApp() {
    static GuiEnvironment* environment = [] {
        auto* made = new GuiEnvironment;
        ::testing::AddGlobalTestEnvironment(made);  // owned and torn down by GoogleTest
        return made;
    }();
    return environment->App();
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
