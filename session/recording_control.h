// What the device session needs from the video side around each swing. The
// video subsystem implements it; the session holds none when the machine has
// no camera, and then records nothing.
#pragma once

#include <string>

namespace Orvane {

class RecordingControl {
public:
    virtual ~RecordingControl() = default;

    // Starts a clip into the next file of the ring; false when recording is
    // off, impossible or failed.
    virtual bool StartRecording() = 0;
    // Below 1: stops now and returns once the file is finalised. Otherwise
    // stops after that many seconds on a detached thread, if still recording.
    virtual void StopRecording(int delaySeconds) = 0;
    // Replays the last successfully started clip, if its file exists.
    virtual void ShowRecordingFile() = 0;
    // Stops and releases any replay in progress.
    virtual void ClosePlayer() = 0;
    // A capture manager exists and the "Recording" setting is on.
    virtual bool IsRecordingAvailable() const = 0;
    // The file of the clip last started; empty when none is.
    virtual std::string CurrentClip() { return {}; }
};

}  // namespace Orvane
