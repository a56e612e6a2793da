#include "app/record_preview.h"

#include "common/debug_log.h"
#include "video/camera_devices.h"
#include "video/player_wnd.h"
#include "video/preview_wnd.h"
#include "video/swing_recorder.h"

namespace orv {

namespace {

// What the demo shows when the machine has no camera: a common webcam mode.
constexpr int kDemoWidth = 640;
constexpr int kDemoHeight = 480;
constexpr int kDemoFps = 30;

}  // namespace

std::unique_ptr<RecordPreview> RecordPreview::Create(QWidget* owner, bool demo,
                                                     const std::filesystem::path& folder,
                                                     std::function<bool()> recordingEnabled) {
    CaptureSources sources;
    EnumCameraDevice cameras;
    cameras.EnumDevice();
    if (cameras.Count() > 0) {
        sources.camera = cameras.Source(0);
    } else if (demo) {
        LOG_INFO("No camera: the demo shows a test picture\n");
        sources.camera = CameraSource::TestPattern(kDemoWidth, kDemoHeight, kDemoFps);
    } else {
        LOG_INFO("No camera: no preview, recording or replay\n");
        return nullptr;
    }
    std::unique_ptr<RecordPreview> video(new RecordPreview());
    video->preview_ = std::make_unique<PreviewWnd>(sources);
    if (!video->preview_->Create(owner)) {
        return nullptr;
    }
    PlayerWnd::GetInstance()->SetWindowInstance(nullptr);
    video->recorder_ = std::make_unique<Orvane::SwingRecorder>(
        folder, video->preview_->GetCaptureManager(), std::move(recordingEnabled));
    return video;
}

RecordPreview::~RecordPreview() {
    recorder_.reset();
    preview_.reset();
    PlayerWnd::ReleaseInstance();
}

bool RecordPreview::StartPreview(int showCommand) {
    return preview_ && preview_->StartPreview(showCommand);
}

Orvane::RecordingControl* RecordPreview::Recorder() const {
    return recorder_.get();
}

}  // namespace orv
