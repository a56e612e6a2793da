// The manager's side of recording a clip per swing; the video subsystem does
// the work behind RecordingControl.
#include "common/debug_log.h"
#include "session/orv_manager.h"

namespace Orvane {

bool OrvManager::StartRecording() {
    RecordingControl* rec = recording.load();
    if (rec == nullptr) {
        return false;
    }
    const bool started = rec->StartRecording();
    if (started) {
        state->recordingStarted = true;
    }
    return started;
}

void OrvManager::StopRecording(int delaySeconds) {
    if (RecordingControl* rec = recording.load()) {
        rec->StopRecording(delaySeconds);
    }
}

void OrvManager::ShowRecordingFile() {
    state->recordingStarted = false;
    if (RecordingControl* rec = recording.load()) {
        rec->ShowRecordingFile();
    }
}

}  // namespace Orvane
