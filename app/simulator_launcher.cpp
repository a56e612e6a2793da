#include "app/simulator_launcher.h"

#include <QFileInfo>
#include <QProcess>
#include <QString>

#include "common/debug_log.h"

namespace orv {

SimulatorStart StartSimulator(const std::string& installFolder) {
    if (installFolder.empty()) {
        LOG_INFO("Simulator folder unknown\n");
        return SimulatorStart::kNotInstalled;
    }
    const QString folder = QString::fromStdString(installFolder);
    const QFileInfo program(folder + "/e6golf.exe");
    if (!program.isFile()) {
        LOG_INFO("No simulator at %s\n", program.filePath().toUtf8().constData());
        return SimulatorStart::kNotInstalled;
    }
    if (!QProcess::startDetached(program.absoluteFilePath(), {}, folder)) {
        LOG_ERROR("QProcess::startDetached error:0x%x\n", 0u);
        return SimulatorStart::kFailed;
    }
    return SimulatorStart::kStarted;
}

}  // namespace orv
