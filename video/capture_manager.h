// Drives the webcam: a live preview drawn into a given window and, on demand,
// a recording of the camera (and the default microphone, when there is one)
// into a file whose container follows its extension. Owned by the preview
// window; the swing recorder starts and stops recordings through it.
#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>

#include "video/camera_source.h"
#include "video/frame_sink.h"
#include "video/gst_support.h"
#include "video/idle_inhibitor.h"
#include "video/microphone_source.h"
#include "video/result_codes.h"
#include "video/task_thread.h"

class PreviewPipeline;
class RecordingPipeline;

enum class CaptureEvent {
    EngineInitialized,
    PreviewStarted,
    PreviewStopped,
    RecordStarted,
    RecordStopped,
    PhotoTaken,
    EngineError,
    Other,
};

struct CaptureTiming {
    // A stop right after a start still waits this long for one encoded frame:
    // a file without one cannot be played.
    std::chrono::milliseconds firstFrameWait{1000};
    // How long an open microphone may stay silent before the recording goes
    // on without it.
    std::chrono::milliseconds firstAudioWait{500};
    // Finalising takes milliseconds; beyond this the clip is given up.
    std::chrono::milliseconds finalizeWait{5000};
};

struct CaptureSources {
    CameraSource camera;  // invalid: the machine has no camera
    MicrophoneSource microphone = MicrophoneSource::DefaultDevice();
    std::string inhibitorBus;  // bus of the idle inhibitor; empty: the system bus
};

class CaptureManager {
public:
    // Silences the default microphone for the life of this object.
    explicit CaptureManager(CaptureSources sources, CaptureTiming timing = {});
    ~CaptureManager();
    CaptureManager(const CaptureManager&) = delete;
    CaptureManager& operator=(const CaptureManager&) = delete;

    HRESULT InitializeCaptureManager(FrameTarget* previewWindow, void* unused = nullptr);
    HRESULT StartPreview();
    HRESULT StartRecord(const std::string& path);
    // Stops the running recording; returns once its file is finalised (or
    // given up after the time-outs), with the recording's result.
    HRESULT StopRecord();
    // Runs on the engine's event thread.
    HRESULT OnCaptureEvent(CaptureEvent event, HRESULT status);
    // Tears the engine down, finalising a running recording. Safe to repeat.
    void ReleaseEngine();

    bool IsPreviewActive() const { return m_bPreviewActive.load(); }
    bool IsRecording() const { return m_bRecording.load(); }
    bool IsPowerRequestActive() const { return m_bPowerRequestActive.load(); }
    float SavedMicLevel() const { return m_fSavedMicLevel; }
    // Frames drawn into the preview window so far.
    uint64_t PreviewFrames();

private:
    void PostEvent(CaptureEvent event, HRESULT status);
    void OnPreviewFrame(GstSample* sample, GstClockTime previewBaseTime);
    void OnRecordingFailed(HRESULT hr, const std::string& text);
    // Finishes (or discards) the current recording; engineMutex_ held.
    HRESULT FinishRecordingLocked();

    const CaptureSources sources_;
    const CaptureTiming timing_;
    MicrophoneSource microphone_;  // resolved at construction
    bool micSilenced_ = false;

    // Guards the engine, the recording and the preview window below.
    std::mutex engineMutex_;
    FrameTarget* m_hPreviewWindow = nullptr;
    std::unique_ptr<PreviewPipeline> m_pEngine;
    bool previewPlaying_ = false;
    std::shared_ptr<RecordingPipeline> recording_;

    // Guards the recording that the camera's frames are handed to.
    std::mutex tapMutex_;
    std::shared_ptr<RecordingPipeline> tapRecording_;

    std::atomic<bool> m_bPreviewActive{false};
    std::atomic<bool> m_bRecording{false};
    std::atomic<bool> m_bPhotoInProgress{false};
    std::atomic<int32_t> m_nErrorCode{0};
    // Events posted for an engine that has since been released are ignored.
    std::atomic<uint64_t> engineGeneration_{0};
    SignalCounter m_hStopEvent;
    IdleInhibitor m_power;
    std::atomic<bool> m_bPowerRequestActive{false};
    float m_fSavedMicLevel = 0.0f;

    TaskThread events_;  // the engine's event thread; last, so it starts last
};
