// The live half of the capture engine: camera -> 320-wide I420 -> tee, with
// one branch drawing into the preview window and one tap handing frames to a
// recording. Recordings run in their own pipeline, so a failing recording
// (a full disk) can never stop the camera.
#pragma once

#include <gst/gst.h>

#include <atomic>
#include <functional>
#include <mutex>
#include <string>

#include "video/camera_source.h"
#include "video/frame_sink.h"
#include "video/frame_size.h"
#include "video/gst_support.h"

class PreviewPipeline {
public:
    // All three run on GStreamer's streaming threads.
    struct Callbacks {
        std::function<void()> started;
        std::function<void(HRESULT, const std::string&)> failed;
        std::function<void(GstSample*, GstClockTime previewBaseTime)> frame;
    };

    explicit PreviewPipeline(Callbacks callbacks);
    ~PreviewPipeline();
    PreviewPipeline(const PreviewPipeline&) = delete;
    PreviewPipeline& operator=(const PreviewPipeline&) = delete;

    // The pipeline with the camera in it.
    HRESULT Create(const CameraSource& camera);
    // Scaling to `size`, the tee, the window branch and the recording tap.
    HRESULT AddPreview(FrameTarget* window, FrameSize size);
    bool HasPreview() const { return sink_ != nullptr; }
    HRESULT Play();
    // Ends the pipeline; its streaming threads are gone when this returns.
    void Stop();

    uint64_t FramesShown() const { return framesShown_.load(); }

private:
    static GstBusSyncReply OnBusMessage(GstBus* bus, GstMessage* message, gpointer self);
    static GstFlowReturn OnTapSample(GstElement* sink, gpointer self);
    GstElement* MakeTap();

    // Guards the use of callbacks_ by streaming threads against their setting-up
    // (GLib's own locks are invisible to the thread sanitizer).
    std::mutex callbackMutex_;
    Callbacks callbacks_;
    GstElement* pipeline_ = nullptr;
    GstElement* camera_ = nullptr;  // owned by pipeline_
    GstElement* sink_ = nullptr;    // owned by pipeline_
    std::atomic<uint64_t> framesShown_{0};
};
