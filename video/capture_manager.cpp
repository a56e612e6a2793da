#include "video/capture_manager.h"

#include "common/debug_log.h"
#include "video/container_format.h"
#include "video/frame_size.h"
#include "video/preview_pipeline.h"
#include "video/pulse_client.h"
#include "video/recording_pipeline.h"

namespace {

constexpr const char* kPowerReason = "CaptureEngine is recording!";

}  // namespace

CaptureManager::CaptureManager(CaptureSources sources, CaptureTiming timing)
    : sources_(std::move(sources)), timing_(timing), m_power(sources_.inhibitorBus) {
    EnsureGStreamer();
    PulseClient pulse;
    std::string defaultMicrophone;
    if (pulse.Connected()) {
        m_fSavedMicLevel = SetMicrophoneLevel(pulse, 0.0f);
        defaultMicrophone = pulse.DefaultMicrophone().value_or("");
        micSilenced_ = !defaultMicrophone.empty();
    }
    microphone_ = sources_.microphone.Resolve(defaultMicrophone);
}

CaptureManager::~CaptureManager() {
    ReleaseEngine();
    events_.Stop();
    if (micSilenced_) {
        SetMicrophoneLevel(m_fSavedMicLevel);
    }
}

HRESULT CaptureManager::InitializeCaptureManager(FrameTarget* previewWindow, void*) {
    ReleaseEngine();
    std::lock_guard lock(engineMutex_);
    m_hPreviewWindow = previewWindow;
    m_pEngine = std::make_unique<PreviewPipeline>(PreviewPipeline::Callbacks{
        [this] { PostEvent(CaptureEvent::PreviewStarted, S_OK); },
        [this](HRESULT hr, const std::string& text) {
            LOG_ERROR("Capture error:0x%x %s\n", static_cast<unsigned>(hr), text.c_str());
            PostEvent(CaptureEvent::EngineError, hr);
        },
        [this](GstSample* sample, GstClockTime base) { OnPreviewFrame(sample, base); }});
    const HRESULT hr = m_pEngine->Create(sources_.camera);
    if (Failed(hr) && hr != MF_E_NO_CAPTURE_DEVICES_AVAILABLE) {
        LOG_ERROR("m_pEngine->Initialize error:0x%x\n", static_cast<unsigned>(hr));
        m_pEngine.reset();
        return hr;
    }
    // No camera is not an error here; the preview will fail to start.
    PostEvent(CaptureEvent::EngineInitialized, hr);
    return S_OK;
}

HRESULT CaptureManager::StartPreview() {
    std::lock_guard lock(engineMutex_);
    if (!m_pEngine) {
        return MF_E_NOT_INITIALIZED;
    }
    if (previewPlaying_) {
        return S_OK;
    }
    if (m_hPreviewWindow == nullptr) {
        return MF_E_NOT_INITIALIZED;
    }
    if (!m_pEngine->HasPreview()) {
        const CameraMode& camera = sources_.camera.Mode();
        if (!sources_.camera.IsValid()) {
            LOG_ERROR("GetSource error:0x%x\n",
                      static_cast<unsigned>(MF_E_NO_CAPTURE_DEVICES_AVAILABLE));
            return MF_E_NO_CAPTURE_DEVICES_AVAILABLE;
        }
        const FrameSize size = GetPreferredFrameSize(camera.width, camera.height);
        const HRESULT hr = m_pEngine->AddPreview(m_hPreviewWindow, size);
        if (Failed(hr)) {
            LOG_ERROR("AddStream error:0x%x\n", static_cast<unsigned>(hr));
            return hr;
        }
    }
    const HRESULT hr = m_pEngine->Play();
    if (Failed(hr)) {
        return hr;
    }
    previewPlaying_ = true;
    if (!m_bPowerRequestActive) {
        m_bPowerRequestActive = m_power.Acquire(kPowerReason);
    }
    return S_OK;
}

HRESULT CaptureManager::StartRecord(const std::string& path) {
    std::lock_guard lock(engineMutex_);
    if (!m_pEngine) {
        LOG_ERROR("m_pEngine NULL\n");
        return MF_E_NOT_INITIALIZED;
    }
    if (m_bRecording) {
        LOG_ERROR("m_bRecording true\n");
        return MF_E_INVALIDREQUEST;
    }
    if (ContainerForPath(path) != Container::Mp4) {
        return MF_E_INVALIDMEDIATYPE;
    }
    if (!previewPlaying_) {
        // Frames for a recording come from the running preview.
        LOG_ERROR("GetSource error:0x%x\n", static_cast<unsigned>(MF_E_INVALIDREQUEST));
        return MF_E_INVALIDREQUEST;
    }
    FinishRecordingLocked();  // a recording that failed on its own is cleared away
    const CameraMode& camera = sources_.camera.Mode();
    auto recording = std::make_shared<RecordingPipeline>(
        path, RecordingFormat{GetPreferredFrameSize(camera.width, camera.height), camera},
        RecordingPipeline::Callbacks{
            [this] { PostEvent(CaptureEvent::RecordStarted, S_OK); },
            [this](HRESULT hr, const std::string& text) { OnRecordingFailed(hr, text); }});
    const HRESULT hr = recording->Start(microphone_, timing_.firstAudioWait);
    if (Failed(hr)) {
        return hr;
    }
    recording_ = recording;
    m_bRecording = true;
    std::lock_guard tap(tapMutex_);
    tapRecording_ = std::move(recording);
    return S_OK;
}

HRESULT CaptureManager::StopRecord() {
    const uint64_t seen = m_hStopEvent.Count();
    bool reportStop = false;
    HRESULT hr = S_FALSE;
    {
        std::lock_guard lock(engineMutex_);
        if (!recording_) {
            return S_FALSE;
        }
        // A recording that failed has already reported its end.
        reportStop = !recording_->HasFailed();
        hr = FinishRecordingLocked();
    }
    if (!reportStop) {
        return hr;
    }
    if (events_.IsCurrent()) {
        OnCaptureEvent(CaptureEvent::RecordStopped, hr);
        return hr;
    }
    PostEvent(CaptureEvent::RecordStopped, hr);
    m_hStopEvent.WaitBeyond(seen, timing_.finalizeWait);
    return hr;
}

HRESULT CaptureManager::FinishRecordingLocked() {
    if (!recording_) {
        return S_FALSE;
    }
    const HRESULT hr = recording_->Finish(timing_.firstFrameWait, timing_.finalizeWait);
    {
        std::lock_guard tap(tapMutex_);
        tapRecording_.reset();
    }
    recording_.reset();
    ReturnFreedMemory();
    return hr;
}

HRESULT CaptureManager::OnCaptureEvent(CaptureEvent event, HRESULT status) {
    switch (event) {
        case CaptureEvent::EngineInitialized:
            if (status == MF_E_NO_CAPTURE_DEVICES_AVAILABLE) {
                status = S_OK;
            }
            LOG_INFO("Engine Initialized\n");
            break;
        case CaptureEvent::PreviewStarted:
            m_bPreviewActive = Succeeded(status);
            LOG_INFO("Preview Started\n");
            break;
        case CaptureEvent::PreviewStopped:
            m_bPreviewActive = false;
            m_hStopEvent.Signal();
            LOG_INFO("Preview Stopped\n");
            break;
        case CaptureEvent::RecordStarted:
            m_bRecording = Succeeded(status);
            LOG_INFO("Recording Started\n");
            break;
        case CaptureEvent::RecordStopped:
            m_bRecording = false;
            m_hStopEvent.Signal();
            LOG_INFO("Recording Stopped\n");
            break;
        case CaptureEvent::PhotoTaken:
            m_bPhotoInProgress = false;
            LOG_INFO("Capture Photo\n");
            break;
        case CaptureEvent::EngineError:
            ReleaseEngine();
            LOG_INFO("Capture Engine error\n");
            break;
        case CaptureEvent::Other:
            if (Failed(status)) {
                LOG_ERROR("Capture error\n");
            }
            break;
    }
    return status;
}

void CaptureManager::ReleaseEngine() {
    std::lock_guard lock(engineMutex_);
    ++engineGeneration_;
    FinishRecordingLocked();
    if (m_pEngine) {
        m_pEngine->Stop();
        m_pEngine.reset();
    }
    previewPlaying_ = false;
    m_bPreviewActive = false;
    m_bRecording = false;
    m_bPhotoInProgress = false;
    m_nErrorCode = 0;
    m_hStopEvent.Signal();  // nobody waits for an event of this engine any more
    // The desktop may go idle again once the camera is off.
    m_power.Release();
    m_bPowerRequestActive = false;
}

uint64_t CaptureManager::PreviewFrames() {
    std::lock_guard lock(engineMutex_);
    return m_pEngine ? m_pEngine->FramesShown() : 0;
}

void CaptureManager::PostEvent(CaptureEvent event, HRESULT status) {
    const uint64_t generation = engineGeneration_.load();
    events_.Post([this, event, status, generation] {
        if (generation == engineGeneration_.load()) {
            OnCaptureEvent(event, status);
        }
    });
}

void CaptureManager::OnPreviewFrame(GstSample* sample, GstClockTime previewBaseTime) {
    std::shared_ptr<RecordingPipeline> recording;
    {
        std::lock_guard lock(tapMutex_);
        recording = tapRecording_;
    }
    if (recording) {
        recording->PushFrame(sample, previewBaseTime);
    }
}

void CaptureManager::OnRecordingFailed(HRESULT hr, const std::string& text) {
    // The camera and the preview go on; only this clip is lost.
    LOG_ERROR("Recording write error:0x%x %s\n", static_cast<unsigned>(hr), text.c_str());
    PostEvent(CaptureEvent::RecordStopped, hr);
}
