// The manager's watchers: a silent-sensor check, the periodic ping, the
// left/right club-signal debounce and the back-swing time-out.
#include <ctime>

#include "common/clock.h"
#include "common/debug_log.h"
#include "session/orv_manager.h"
#include "simulator/trusim_messages.h"

namespace Orvane {

void OrvManager::StopWorker(std::unique_ptr<WorkerRecord>& worker) {
    if (!worker) {
        return;
    }
    worker->Broadcast();
    worker->Join();
    worker.reset();
}

void OrvManager::StartConnCheckThread() {
    if (!connCheckWorker) {
        connCheckWorker = std::make_unique<WorkerRecord>();
        connCheckWorker->thread =
            std::make_unique<std::thread>(&OrvManager::ConnCheckThreadFunc, this);
    }
}

void OrvManager::StartPingThread() {
    if (!pingWorker) {
        pingWorker = std::make_unique<WorkerRecord>();
        pingWorker->thread = std::make_unique<std::thread>(&OrvManager::PingThreadFunc, this);
    }
}

void OrvManager::StartBackSwingTimeoutThread() {
    if (!backSwingWorker) {
        backSwingTimeoutActive = true;
        backSwingWorker = std::make_unique<WorkerRecord>();
        backSwingWorker->thread =
            std::make_unique<std::thread>(&OrvManager::BackSwingTimeoutThreadFunc, this);
    }
}

void OrvManager::StopConnCheckThread() {
    StopWorker(connCheckWorker);
    LOG_INFO("Orv Conn state thread terminated.\n");
}

void OrvManager::StopPingThread() {
    StopWorker(pingWorker);
    LOG_INFO("Orv Ping thread terminated.\n");
}

void OrvManager::StopBackSwingTimeoutThread() {
    if (backSwingWorker) {
        backSwingTimeoutActive = false;
        StopWorker(backSwingWorker);
    }
}

void OrvManager::ConnCheckThreadFunc() {
    WorkerRecord& worker = *connCheckWorker;
    while (running) {
        std::unique_lock<std::mutex> lock(worker.mutex);
        BtfrGattWrapper* link = gatt.load();
        if (link != nullptr && link->GetState() == 3) {
            const int64_t now = WallClockMs();
            const int64_t last = state->lastSendMs.load();
            if (last != 0) {
                const int64_t limit = state->linkAlive.load()
                                          ? config.timing.aliveLinkLimit.count()
                                          : config.timing.freshLinkLimit.count();
                if (now - last > limit) {
                    LOG_INFO("Call disconnect.(timeout:%lld)\n", static_cast<long long>(limit));
                    link->Disconnect();
                }
            }
        }
        worker.cv.wait_for(lock, config.timing.connCheckInterval, [this] { return !running; });
    }
}

void OrvManager::PingThreadFunc() {
    WorkerRecord& worker = *pingWorker;
    while (running) {
        std::unique_lock<std::mutex> lock(worker.mutex);
        bool idle = false;
        if (IsSensorConnected() && sendWorker) {
            std::lock_guard<std::mutex> sendLock(sendWorker->mutex);
            idle = sendQ.empty();
        }
        // Pings never pile up behind real traffic.
        if (idle) {
            const std::time_t now = std::time(nullptr);
            std::tm local{};
            localtime_r(&now, &local);
            OrvCmdTimeSyncReqModel timeSync(static_cast<uint8_t>(local.tm_hour),
                                            static_cast<uint8_t>(local.tm_min),
                                            static_cast<uint8_t>(local.tm_sec), 1);
            PushSendQ(timeSync);
            OrvCmdBatteryStateReqModel battery;
            EnqueueCommand(battery);
        }
        E6TruSimClient* client = e6.load();
        if (client != nullptr && client->IsSocketOpen() && client->IsConnected()) {
            client->SendTruSimMessage(E6_GetPingJson());
        }
        worker.cv.wait_for(lock, config.timing.pingInterval, [this] { return !running; });
    }
    LOG_INFO("PingThreadFunc end\n");
}

void OrvManager::LRSigThreadFunc() {
    // A debounce: nobody signals this wait, so each pass is a plain pause.
    std::mutex pauseMutex;  // guards nothing but the pause itself
    std::condition_variable pause;
    int count = 0;
    while (running) {
        std::unique_lock<std::mutex> lock(pauseMutex);
        count = state->lrSigCount.load();
        if (!state->lrSigPending.exchange(false)) {
            break;
        }
        pause.wait_for(lock, config.timing.lrSigDebounce);
    }
    state->lrSigPending = false;
    state->lrSigCount = 0;
    E6TruSimClient* client = e6.load();
    if (running && client != nullptr && client->IsSocketOpen() && client->IsConnected() &&
        client->GetArmState() == 0) {
        LOG_INFO("LRSig count:%d\n", count);
        const int club =
            E6_GetClubWithAddedCount(static_cast<int>(client->GetCurrentClub()), count);
        ChangeClub(club, true);
    }
    std::lock_guard<std::mutex> lock(lrSigDoneMutex);
    lrSigThreadActive = false;
    lrSigDone.notify_all();
}

void OrvManager::WaitForLRSigThread() {
    std::unique_lock<std::mutex> lock(lrSigDoneMutex);
    lrSigDone.wait(lock, [this] { return !lrSigThreadActive.load(); });
}

void OrvManager::BackSwingTimeoutThreadFunc() {
    WorkerRecord& worker = *backSwingWorker;
    int passes = 0;
    while (backSwingTimeoutActive) {
        std::unique_lock<std::mutex> lock(worker.mutex);
        if ((state->stepState.load() & 0xFF) == 2) {
            LOG_INFO("Back swing timeout canceled.\n");
            backSwingTimeoutActive = false;
            break;
        }
        if (passes == config.timing.backSwingPasses) {
            LOG_INFO("Back swing timeout.\n");
            StopRecording(0);
            backSwingTimeoutActive = false;
            break;
        }
        ++passes;
        worker.cv.wait_for(lock, config.timing.backSwingWait,
                           [this] { return !backSwingTimeoutActive; });
    }
}

}  // namespace Orvane
