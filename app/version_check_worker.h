// Runs the version check on its own thread and hands the result to the UI
// thread.
#pragma once

#include <QObject>

#include <thread>

#include "app/version_check.h"

namespace orv {

class VersionCheckWorker : public QObject {
    Q_OBJECT
public:
    explicit VersionCheckWorker(VersionCheckConfig config, QObject* parent = nullptr);
    // Waits for a running check; the config's total time limit bounds the wait.
    ~VersionCheckWorker() override;

    // Starts the check once; later calls do nothing.
    void Start();

signals:
    // Emitted on the thread that owns this object (the UI thread).
    void Finished(const orv::VersionCheckResult& result);

private:
    VersionCheckConfig config_;
    std::thread thread_;
};

}  // namespace orv
