#include "app/simulator_launcher.h"

#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QStandardPaths>
#include <QString>

#include "common/debug_log.h"

namespace orv {

namespace {

bool IsWindowsProgram(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) && file.read(2) == "MZ";
}

}  // namespace

SimulatorStartResult StartSimulator(const SimulatorLaunch& launch) {
    if (launch.folder.empty()) {
        LOG_INFO("Simulator folder unknown\n");
        return {SimulatorStart::kNotInstalled, ""};
    }
    const QString folder = QString::fromStdString(launch.folder);
    const QFileInfo program(folder + "/e6golf.exe");
    if (!program.isFile()) {
        LOG_INFO("No simulator at %s\n", program.filePath().toUtf8().constData());
        return {SimulatorStart::kNotInstalled, ""};
    }
    QStringList words = QProcess::splitCommand(QString::fromStdString(launch.launchCommand));
    if (words.isEmpty() && IsWindowsProgram(program.filePath())) {
        const QString wine = QStandardPaths::findExecutable(QStringLiteral("wine"));
        if (wine.isEmpty()) {
            LOG_ERROR("wine not found on PATH and no E6 LaunchCommand set\n");
            return {SimulatorStart::kNoWine, ""};
        }
        words << wine;
    }
    words << program.absoluteFilePath();

    QProcess process;
    process.setProgram(words.takeFirst());
    process.setArguments(words);
    process.setWorkingDirectory(folder);
    if (!launch.winePrefix.empty()) {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("WINEPREFIX"), QString::fromStdString(launch.winePrefix));
        process.setProcessEnvironment(environment);
    }
    const std::string starter = process.program().toStdString();
    if (!process.startDetached()) {
        LOG_ERROR("QProcess::startDetached error:0x%x\n", static_cast<unsigned>(process.error()));
        return {SimulatorStart::kFailed, starter};
    }
    LOG_INFO("Simulator started by %s\n", starter.c_str());
    return {SimulatorStart::kStarted, starter};
}

}  // namespace orv
