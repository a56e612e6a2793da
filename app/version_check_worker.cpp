#include "app/version_check_worker.h"

#include <utility>

namespace orv {

VersionCheckWorker::VersionCheckWorker(VersionCheckConfig config, QObject* parent)
    : QObject(parent), config_(std::move(config)) {}

VersionCheckWorker::~VersionCheckWorker() {
    cancel_.Cancel();
    if (thread_.joinable()) {
        thread_.join();
    }
}

void VersionCheckWorker::Start() {
    if (thread_.joinable()) {
        return;
    }
    thread_ = std::thread([this] {
        VersionCheckResult result = CheckVersion(config_, &cancel_);
        // Queued onto this object's thread; dropped if the object is gone by then.
        QMetaObject::invokeMethod(
            this, [this, result = std::move(result)] { emit Finished(result); },
            Qt::QueuedConnection);
    });
}

}  // namespace orv
