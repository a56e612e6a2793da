// Runs the version check on its own thread and hands the result to the UI
// thread.
#pragma once

#include <QObject>

#include <thread>

#include "app/https_get.h"
#include "app/version_check.h"

namespace orv {

class VersionCheckWorker : public QObject {
    Q_OBJECT
public:
    explicit VersionCheckWorker(VersionCheckConfig config, QObject* parent = nullptr);
    // Cancels a running check and waits for its thread.
    ~VersionCheckWorker() override;

    // Starts the check once; later calls do nothing.
    void Start();
    // Ends a running check at once (it reports no answer); for closing.
    void Cancel() { cancel_.Cancel(); }

signals:
    // Emitted on the thread that owns this object (the UI thread).
    void Finished(const orv::VersionCheckResult& result);

private:
    VersionCheckConfig config_;
    HttpsCancel cancel_;
    std::thread thread_;
};

}  // namespace orv
