// One short clip per swing into a ring of ten files, and its replay: what the
// device session drives around each swing. Calls come from the session's
// threads; a delayed stop runs on a thread of its own, which ends before the
// recorder does.
#pragma once

#include <condition_variable>
#include <filesystem>
#include <functional>
#include <list>
#include <memory>
#include <mutex>
#include <string>
#include <thread>

#include "session/recording_control.h"

class CaptureManager;

namespace Orvane {

class SwingRecorder : public RecordingControl {
public:
    // `capture` may be null (no camera); it must outlive the recorder.
    // `recordingEnabled` tells whether the user wants swings recorded.
    SwingRecorder(std::filesystem::path folder, CaptureManager* capture,
                  std::function<bool()> recordingEnabled);
    ~SwingRecorder() override;
    SwingRecorder(const SwingRecorder&) = delete;
    SwingRecorder& operator=(const SwingRecorder&) = delete;

    bool StartRecording() override;
    void StopRecording(int delaySeconds) override;
    void ShowRecordingFile() override;
    void ClosePlayer() override;
    bool IsRecordingAvailable() const override;
    std::string CurrentClip() override { return LastRecordingFile(); }

    // The path of the last recording that started; empty after a failed start.
    std::string LastRecordingFile();

private:
    struct DelayedStop {
        std::thread thread;
        bool finished = false;
    };

    void StopNow();
    void StopLater(int delaySeconds);
    void ReapFinishedStops();

    const std::filesystem::path folder_;
    CaptureManager* const capture_;
    const std::function<bool()> recordingEnabled_;

    // Guards the ring counter and the last file.
    std::mutex mutex_;
    int recordCounter_ = 0;
    std::string lastRecordingFile_;

    // Guards the delayed stops and the shutdown flag.
    std::mutex stopsMutex_;
    std::condition_variable shutdown_;
    bool shuttingDown_ = false;
    std::list<DelayedStop> delayedStops_;
};

}  // namespace Orvane
