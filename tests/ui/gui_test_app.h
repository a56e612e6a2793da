// One private X display and one QApplication for a whole test program, made
// on first use and torn down at exit (application first, then the display).
#pragma once

#include <QApplication>

#include <chrono>
#include <functional>

namespace orv::test {

QApplication& GuiTestApp();

// Runs the event loop until `condition` holds or `timeout` passes.
bool ProcessEventsUntil(const std::function<bool()>& condition,
                        std::chrono::milliseconds timeout = std::chrono::seconds(10));

}  // namespace orv::test
