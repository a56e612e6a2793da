// The video side of the main window: the preview window with its capture
// manager, the replay window and the per-swing recorder the session drives.
// Made only when there is a camera (or, in demo mode, the test picture).
#pragma once

#include <filesystem>
#include <functional>
#include <memory>

class QWidget;
class PreviewWnd;

namespace Orvane {
class RecordingControl;
class SwingRecorder;
}  // namespace Orvane

namespace orv {

class RecordPreview {
public:
    // Null when the machine has no camera and the demo picture is not wanted,
    // or when the preview cannot be made.
    static std::unique_ptr<RecordPreview> Create(QWidget* owner, bool demo,
                                                 const std::filesystem::path& folder,
                                                 std::function<bool()> recordingEnabled);
    // Releases the recorder, the preview (microphone level restored) and the replay window.
    ~RecordPreview();
    RecordPreview(const RecordPreview&) = delete;
    RecordPreview& operator=(const RecordPreview&) = delete;

    bool StartPreview(int showCommand);
    Orvane::RecordingControl* Recorder() const;
    PreviewWnd* Preview() const { return preview_.get(); }

private:
    RecordPreview() = default;

    std::unique_ptr<PreviewWnd> preview_;
    std::unique_ptr<Orvane::SwingRecorder> recorder_;
};

}  // namespace orv
