// One recording: frames handed over by the preview's tap (and the microphone,
// when there is one) encoded as H.264 (openh264) and AAC (vo-aacenc) into a
// fragmented MP4. Fragments of one second each are complete on disk as they
// are written, so a clip survives a crash of the program up to its last
// second.
#pragma once

#include <gst/gst.h>

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <string>

#include "video/frame_size.h"
#include "video/microphone_source.h"
#include "video/result_codes.h"

struct RecordingFormat {
    FrameSize size;     // of the frames handed over
    CameraMode camera;  // the camera's own mode: frame rate and bit rate
};

class RecordingPipeline {
public:
    // Both run on streaming threads, with the recording's lock held: they
    // must only hand the news on.
    struct Callbacks {
        std::function<void()> firstFrame;                         // first frame encoded
        std::function<void(HRESULT, const std::string&)> failed;  // e.g. the disk is full
    };

    RecordingPipeline(std::string path, RecordingFormat format, Callbacks callbacks);
    ~RecordingPipeline();
    RecordingPipeline(const RecordingPipeline&) = delete;
    RecordingPipeline& operator=(const RecordingPipeline&) = delete;

    // Opens the file and starts the encoders. A microphone that stays silent
    // for `firstAudioWait` is dropped and the recording made with video only.
    HRESULT Start(const MicrophoneSource& microphone, std::chrono::milliseconds firstAudioWait);

    // Takes a frame from the preview: its time on the shared clock becomes
    // this recording's time.
    void PushFrame(GstSample* sample, GstClockTime previewBaseTime);

    // Waits for the first encoded frame (a file without one is unplayable),
    // ends the streams and waits for the file to be finalised. Returns the
    // recording's result.
    HRESULT Finish(std::chrono::milliseconds firstFrameWait,
                   std::chrono::milliseconds finalizeWait);

    bool HasAudio() const { return microphone_ != nullptr; }
    // A failure already reported through the callback.
    bool HasFailed();
    HRESULT Result();

private:
    HRESULT Build(const MicrophoneSource* microphone);
    bool BuildVideoBranch(GstElement* mux);
    bool BuildAudioBranch(GstElement* mux, const MicrophoneSource& microphone);
    bool WaitForFirstAudio(std::chrono::milliseconds wait);
    void Teardown();

    static GstBusSyncReply OnBusMessage(GstBus* bus, GstMessage* message, gpointer self);
    static GstPadProbeReturn OnEncodedFrame(GstPad* pad, GstPadProbeInfo* info, gpointer self);
    static GstPadProbeReturn OnAudioBuffer(GstPad* pad, GstPadProbeInfo* info, gpointer self);

    const std::string path_;
    const RecordingFormat format_;
    const Callbacks callbacks_;

    GstElement* pipeline_ = nullptr;
    GstElement* frames_ = nullptr;      // appsrc, owned by pipeline_
    GstElement* microphone_ = nullptr;  // owned by pipeline_
    GstClockTime baseTime_ = 0;

    // Guards everything below, written by streaming threads and callers.
    std::mutex mutex_;
    std::condition_variable changed_;
    bool started_ = false;  // Start() succeeded: failures go to the callback
    bool closing_ = false;  // Finish() began: no more frames, no more callbacks
    bool capsSet_ = false;
    bool firstFrame_ = false;
    bool audioSeen_ = false;
    bool eos_ = false;
    bool failureReported_ = false;
    HRESULT result_ = S_OK;
    std::string error_;
};
