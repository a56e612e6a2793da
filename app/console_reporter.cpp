#include "app/console_reporter.h"

#include <QCoreApplication>
#include <QLocale>
#include <cstdio>

#include "app/shot_text.h"

namespace orv {

void ConsoleReporter::Line(const QString& text) {
    std::printf("%s\n", text.toUtf8().constData());
    std::fflush(stdout);
}

void ConsoleReporter::OnOrvE6ConnectionChanged(bool connected) {
    Line(connected ? tr("Simulator: connected") : tr("Simulator: disconnected"));
}

void ConsoleReporter::OnOrvOrvaneConnectionChanged(int state) {
    switch (state) {
        case 0:
            Line(tr("Sensor: disconnected"));
            break;
        case 1:
            Line(tr("Sensor: searching"));
            break;
        case 2:
            Line(tr("Sensor: connecting"));
            break;
        case 3:
            Line(tr("Sensor: connected, firmware %1")
                     .arg(QString::fromStdString(manager_.GetDeviceVersion())));
            break;
        default:
            break;
    }
}

void ConsoleReporter::OnOrvOrvaneBatteryState(int percent) {
    const QLocale locale;
    Line(tr("Sensor battery: %1").arg(locale.toString(percent) + locale.percent()));
}

void ConsoleReporter::OnOrvShot() {
    const Orvane::LastShotInfo shot = manager_.GetLastShot();
    // Refused shots are not numbered: the simulator never saw them.
    if (shot.outcome == Orvane::ShotOutcome::kRefusedNotFinite) {
        Line(OutcomeText(shot.outcome));
        return;
    }
    const int number = ++shots_;
    Line(tr("Shot %1: %2").arg(QLocale().toString(number), ShotLine(shot)));
}

}  // namespace orv
