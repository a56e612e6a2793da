// Console mode's view of the session: one line per state change and per shot
// on standard output.
#pragma once

#include <atomic>

#include "session/orv_manager.h"

namespace orv {

class ConsoleReporter : public Orvane::OrvManagerCallback {
public:
    explicit ConsoleReporter(const Orvane::OrvManager& manager) : manager_(manager) {}

    void OnOrvE6ConnectionChanged(bool connected) override;
    void OnOrvOrvaneConnectionChanged(int state) override;
    void OnOrvOrvaneBatteryState(int percent) override;
    void OnOrvShot() override;
    void OnOrvReady() override {}

private:
    const Orvane::OrvManager& manager_;
    std::atomic<int> shots_{0};
};

}  // namespace orv
