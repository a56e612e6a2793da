// One private X display and one QApplication for a whole test program, made
// on first use and torn down at exit (application first, then the display).
#pragma once

#include <QApplication>
#include <QMessageBox>

#include <chrono>
#include <functional>

namespace orv::test {

QApplication& GuiTestApp();

// What a message box showed before it was answered.
struct SeenMessageBox {
    bool seen = false;
    QString text;
    QMessageBox::Icon icon = QMessageBox::NoIcon;
    QMessageBox::StandardButtons buttons;
};

// Answers the next message box that opens with `button`; the result is filled
// in when that happens. Keep the object alive until the box has closed.
class MessageBoxAnswerer {
public:
    explicit MessageBoxAnswerer(QMessageBox::StandardButton button);
    ~MessageBoxAnswerer();
    MessageBoxAnswerer(const MessageBoxAnswerer&) = delete;
    MessageBoxAnswerer& operator=(const MessageBoxAnswerer&) = delete;

    const SeenMessageBox& seen() const { return seen_; }

private:
    SeenMessageBox seen_;
    class QTimer* timer_;
};

// Runs the event loop until `condition` holds or `timeout` passes.
bool ProcessEventsUntil(const std::function<bool()>& condition,
                        std::chrono::milliseconds timeout = std::chrono::seconds(10));

}  // namespace orv::test
