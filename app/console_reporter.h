// Console mode's view of the session: one line per state change and per shot
// on standard output, in the language chosen at start-up.
#pragma once

#include <QCoreApplication>
#include <atomic>

#include "session/orv_manager.h"

namespace orv {

class ConsoleReporter : public Orvane::OrvManagerCallback {
    Q_DECLARE_TR_FUNCTIONS(ConsoleReporter)
public:
    explicit ConsoleReporter(const Orvane::OrvManager& manager) : manager_(manager) {}

    void OnOrvE6ConnectionChanged(bool connected) override;
    void OnOrvOrvaneConnectionChanged(int state) override;
    void OnOrvOrvaneBatteryState(int percent) override;
    void OnOrvShot() override;
    void OnOrvReady() override {}

    // Whole lines at once, so lines from the session's threads never mix.
    static void Line(const QString& text);

private:
    const Orvane::OrvManager& manager_;
    std::atomic<int> shots_{0};
};

}  // namespace orv
