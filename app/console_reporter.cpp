#include "app/console_reporter.h"

#include <cstdio>

#include "app/shot_text.h"

namespace orv {

namespace {

// Whole lines at once, so lines from the session's threads never mix.
void Line(const std::string& text) {
    std::printf("%s\n", text.c_str());
    std::fflush(stdout);
}

}  // namespace

void ConsoleReporter::OnOrvE6ConnectionChanged(bool connected) {
    Line(connected ? "Simulator: connected" : "Simulator: disconnected");
}

void ConsoleReporter::OnOrvOrvaneConnectionChanged(int state) {
    switch (state) {
        case 0:
            Line("Sensor: disconnected");
            break;
        case 1:
            Line("Sensor: searching");
            break;
        case 2:
            Line("Sensor: connecting");
            break;
        case 3:
            Line("Sensor: connected, firmware " + manager_.GetDeviceVersion());
            break;
        default:
            break;
    }
}

void ConsoleReporter::OnOrvOrvaneBatteryState(int percent) {
    Line("Sensor battery: " + std::to_string(percent) + "%");
}

void ConsoleReporter::OnOrvShot() {
    const Orvane::LastShotInfo shot = manager_.GetLastShot();
    // Refused shots are not numbered: the simulator never saw them.
    if (shot.outcome == Orvane::ShotOutcome::kRefusedNotFinite) {
        Line(Orvane::ShotOutcomeText(shot.outcome));
        return;
    }
    const int number = ++shots_;
    Line("Shot " + std::to_string(number) + ": " + ShotLine(shot));
}

}  // namespace orv
