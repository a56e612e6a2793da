#include "video/swing_recorder.h"

#include <chrono>
#include <cstdio>

#include "common/debug_log.h"
#include "video/capture_manager.h"
#include "video/player_wnd.h"

namespace Orvane {

namespace {

// MyRecord0.mp4 to MyRecord9.mp4, the oldest overwritten.
constexpr int kRingSize = 10;

// The session manager's names: these operations are its own in the logs.
constexpr const char* kStartTag = "Orvane::OrvManager::StartRecording";
constexpr const char* kStopTag = "Orvane::OrvManager::StopRecording";
constexpr const char* kDelayedStopTag = "Orvane::OrvManager::StopRecording::<lambda>";
constexpr const char* kShowTag = "Orvane::OrvManager::ShowRecordingFile";

}  // namespace

SwingRecorder::SwingRecorder(std::filesystem::path folder, CaptureManager* capture,
                             std::function<bool()> recordingEnabled)
    : folder_(std::move(folder)),
      capture_(capture),
      recordingEnabled_(std::move(recordingEnabled)) {}

SwingRecorder::~SwingRecorder() {
    {
        std::lock_guard lock(stopsMutex_);
        shuttingDown_ = true;
    }
    shutdown_.notify_all();
    // Pending delayed stops wake up and end; one that is stopping finishes first.
    for (DelayedStop& stop : delayedStops_) {
        stop.thread.join();
    }
}

bool SwingRecorder::IsRecordingAvailable() const {
    return capture_ != nullptr && recordingEnabled_ && recordingEnabled_();
}

bool SwingRecorder::StartRecording() {
    if (!IsRecordingAvailable()) {
        return false;
    }
    StopRecording(0);
    std::string path;
    {
        std::lock_guard lock(mutex_);
        char name[32];
        std::snprintf(name, sizeof name, "MyRecord%d.mp4", recordCounter_);
        path = (folder_ / name).string();
        // Advances even when this recording fails.
        recordCounter_ = recordCounter_ + 1 < kRingSize ? recordCounter_ + 1 : 0;
    }
    const HRESULT hr = capture_->StartRecord(path);
    std::lock_guard lock(mutex_);
    if (Failed(hr)) {
        LOG_INFO_AS(kStartTag, "StartRecording fail\n");
        lastRecordingFile_.clear();
        return false;
    }
    LOG_INFO_AS(kStartTag, "StartRecording success\n");
    lastRecordingFile_ = path;
    return true;
}

void SwingRecorder::StopRecording(int delaySeconds) {
    if (!IsRecordingAvailable()) {
        return;
    }
    if (delaySeconds < 1) {
        StopNow();
    } else {
        StopLater(delaySeconds);
    }
}

void SwingRecorder::StopNow() {
    if (capture_->IsRecording()) {
        LOG_INFO_AS(kStopTag, "StopRecording\n");
        capture_->StopRecord();
    }
}

void SwingRecorder::StopLater(int delaySeconds) {
    std::lock_guard lock(stopsMutex_);
    ReapFinishedStops();
    if (shuttingDown_) {
        return;
    }
    DelayedStop& stop = delayedStops_.emplace_back();
    stop.thread = std::thread([this, delaySeconds, &stop] {
        std::unique_lock wait(stopsMutex_);
        const bool cancelled = shutdown_.wait_for(wait, std::chrono::seconds(delaySeconds),
                                                  [this] { return shuttingDown_; });
        wait.unlock();
        if (!cancelled && capture_->IsRecording()) {
            LOG_INFO_AS(kDelayedStopTag, "StopRecording delay\n");
            capture_->StopRecord();
        }
        wait.lock();
        stop.finished = true;
    });
}

void SwingRecorder::ReapFinishedStops() {
    for (auto it = delayedStops_.begin(); it != delayedStops_.end();) {
        if (it->finished) {
            it->thread.join();  // it only has to return: it holds no lock any more
            it = delayedStops_.erase(it);
        } else {
            ++it;
        }
    }
}

void SwingRecorder::ShowRecordingFile() {
    std::string path;
    {
        std::lock_guard lock(mutex_);
        path = lastRecordingFile_;
    }
    LOG_INFO_AS(kShowTag, "Show Recording File...\n");
    if (path.empty()) {
        return;
    }
    std::FILE* file = std::fopen(path.c_str(), "r");
    if (file == nullptr) {
        return;
    }
    std::fclose(file);
    PlayerWnd* playerWnd = PlayerWnd::GetInstance();
    if (!playerWnd->Create()) {
        LOG_ERROR_AS(kShowTag, "playerWnd->Create() false\n");
        return;
    }
    if (!playerWnd->OpenURL(path)) {
        LOG_ERROR_AS(kShowTag, "playerWnd->OpenURL() false\n");
        // A player that never opened would refuse every later clip.
        playerWnd->Close();
    }
}

void SwingRecorder::ClosePlayer() {
    PlayerWnd::GetInstance()->Close();
}

std::string SwingRecorder::LastRecordingFile() {
    std::lock_guard lock(mutex_);
    return lastRecordingFile_;
}

}  // namespace Orvane
