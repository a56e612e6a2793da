#include "video/ui_thread.h"

#include <QCoreApplication>
#include <QMetaObject>
#include <QThread>

#include <condition_variable>
#include <memory>
#include <mutex>

#include "common/debug_log.h"
#include "video/result_codes.h"

namespace {

struct Handoff {
    enum class Stage { Waiting, Running, Done, Abandoned };
    std::mutex mutex;  // guards stage
    std::condition_variable changed;
    Stage stage = Stage::Waiting;
};

}  // namespace

bool PostToUiThread(std::function<void()> work) {
    QCoreApplication* app = QCoreApplication::instance();
    if (app == nullptr) {
        return false;
    }
    return QMetaObject::invokeMethod(app, std::move(work), Qt::QueuedConnection);
}

bool RunOnUiThread(const std::function<void()>& work, std::chrono::milliseconds timeout) {
    QCoreApplication* app = QCoreApplication::instance();
    if (app == nullptr) {
        return false;
    }
    if (QThread::currentThread() == app->thread()) {
        work();
        return true;
    }
    auto handoff = std::make_shared<Handoff>();
    const bool posted = PostToUiThread([handoff, work] {
        {
            std::lock_guard lock(handoff->mutex);
            if (handoff->stage == Handoff::Stage::Abandoned) {
                return;
            }
            handoff->stage = Handoff::Stage::Running;
        }
        work();
        std::lock_guard lock(handoff->mutex);
        handoff->stage = Handoff::Stage::Done;
        handoff->changed.notify_all();
    });
    if (!posted) {
        return false;
    }
    std::unique_lock lock(handoff->mutex);
    handoff->changed.wait_for(lock, timeout,
                              [&] { return handoff->stage != Handoff::Stage::Waiting; });
    if (handoff->stage == Handoff::Stage::Waiting) {
        handoff->stage = Handoff::Stage::Abandoned;
        LOG_ERROR("RunOnUiThread error:0x%x\n", static_cast<unsigned>(E_FAIL));
        return false;
    }
    // Once started it finishes on the GUI thread; wait for it.
    handoff->changed.wait(lock, [&] { return handoff->stage == Handoff::Stage::Done; });
    return true;
}
