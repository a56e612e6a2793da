#include "video/preview_pipeline.h"

#include <gst/app/gstappsink.h>

#include "common/debug_log.h"

PreviewPipeline::PreviewPipeline(Callbacks callbacks) : callbacks_(std::move(callbacks)) {}

PreviewPipeline::~PreviewPipeline() {
    Stop();
}

HRESULT PreviewPipeline::Create(const CameraSource& camera) {
    if (!EnsureGStreamer()) {
        return E_FAIL;
    }
    camera_ = camera.CreateElement();
    if (camera_ == nullptr) {
        return MF_E_NO_CAPTURE_DEVICES_AVAILABLE;
    }
    // Recordings share the system clock, so their timestamps line up with the
    // camera's.
    pipeline_ = NewPipeline("capture-engine", OnBusMessage, this);
    gst_bin_add(GST_BIN(pipeline_), camera_);
    std::lock_guard publish(callbackMutex_);
    return S_OK;
}

GstElement* PreviewPipeline::MakeTap() {
    GstElement* tap = MakeElement("appsink", "record-tap");
    if (tap == nullptr) {
        return nullptr;
    }
    g_object_set(tap, "sync", FALSE, "max-buffers", 2u, "drop", TRUE, "emit-signals", TRUE, "async",
                 FALSE, nullptr);
    g_signal_connect(tap, "new-sample", G_CALLBACK(OnTapSample), this);
    return tap;
}

HRESULT PreviewPipeline::AddPreview(FrameTarget* window, FrameSize size) {
    if (pipeline_ == nullptr) {
        return MF_E_NOT_INITIALIZED;
    }
    GstElement* scale = MakeElement("videoconvertscale", "scale");
    GstElement* format = MakeElement("capsfilter", "preferred-size");
    GstElement* tee = MakeElement("tee", "split");
    GstElement* showQueue = MakeElement("queue", "preview-queue");
    GstElement* convert = MakeElement("videoconvert", "preview-convert");
    // Live frames are shown as they come: waiting for their time only adds delay.
    GstElement* sink = MakeFrameSink("preview-sink", window, false, &framesShown_);
    GstElement* tapQueue = MakeElement("queue", "tap-queue");
    GstElement* tap = MakeTap();
    if (!scale || !format || !tee || !showQueue || !convert || !sink || !tapQueue || !tap) {
        for (GstElement* e : {scale, format, tee, showQueue, convert, sink, tapQueue, tap}) {
            if (e != nullptr) {
                gst_object_unref(gst_object_ref_sink(e));
            }
        }
        return E_FAIL;
    }
    // Width, even height and square pixels all given: with the width alone the
    // scaler keeps the height and stretches the pixels instead.
    GstCapsPtr caps(gst_caps_new_simple("video/x-raw", "format", G_TYPE_STRING, "I420", "width",
                                        G_TYPE_INT, size.width, "height", G_TYPE_INT, size.height,
                                        "pixel-aspect-ratio", GST_TYPE_FRACTION, 1, 1, nullptr));
    g_object_set(format, "caps", caps.get(), nullptr);
    g_object_set(tee, "allow-not-linked", TRUE, nullptr);
    // A slow window or recording drops old frames instead of holding up the camera.
    for (GstElement* queue : {showQueue, tapQueue}) {
        g_object_set(queue, "leaky", 2, "max-size-buffers", 3u, "max-size-bytes", 0u,
                     "max-size-time", G_GUINT64_CONSTANT(0), nullptr);
    }
    if (!AddAndLink(GST_BIN(pipeline_), {scale, format, tee, showQueue, convert, sink}) ||
        !AddAndLink(GST_BIN(pipeline_), {tapQueue, tap}) || !gst_element_link(camera_, scale) ||
        !gst_element_link(tee, tapQueue)) {
        return E_FAIL;
    }
    sink_ = sink;
    return S_OK;
}

HRESULT PreviewPipeline::Play() {
    if (pipeline_ == nullptr || sink_ == nullptr) {
        return MF_E_NOT_INITIALIZED;
    }
    if (gst_element_set_state(pipeline_, GST_STATE_PLAYING) == GST_STATE_CHANGE_FAILURE) {
        LOG_ERROR("gst_element_set_state error:0x%x\n", static_cast<unsigned>(E_FAIL));
        return E_FAIL;
    }
    return S_OK;
}

void PreviewPipeline::Stop() {
    if (pipeline_ == nullptr) {
        return;
    }
    DisposePipeline(pipeline_);
    camera_ = nullptr;
    sink_ = nullptr;
}

GstBusSyncReply PreviewPipeline::OnBusMessage(GstBus*, GstMessage* message, gpointer self) {
    auto* preview = static_cast<PreviewPipeline*>(self);
    std::lock_guard lock(preview->callbackMutex_);
    switch (GST_MESSAGE_TYPE(message)) {
        case GST_MESSAGE_STATE_CHANGED: {
            GstState oldState, newState;
            gst_message_parse_state_changed(message, &oldState, &newState, nullptr);
            if (GST_IS_PIPELINE(GST_MESSAGE_SRC(message)) && newState == GST_STATE_PLAYING &&
                preview->callbacks_.started) {
                preview->callbacks_.started();
            }
            break;
        }
        case GST_MESSAGE_ERROR: {
            HRESULT hr = E_FAIL;
            const std::string text = DescribeError(message, &hr);
            if (preview->callbacks_.failed) {
                preview->callbacks_.failed(hr, text);
            }
            break;
        }
        default:
            break;
    }
    // Nobody reads this bus: everything is handled here. Dropping leaves the
    // message to us.
    gst_message_unref(message);
    return GST_BUS_DROP;
}

GstFlowReturn PreviewPipeline::OnTapSample(GstElement* sink, gpointer self) {
    auto* preview = static_cast<PreviewPipeline*>(self);
    GstSample* sample = gst_app_sink_pull_sample(GST_APP_SINK(sink));
    if (sample == nullptr) {
        return GST_FLOW_OK;
    }
    {
        std::lock_guard lock(preview->callbackMutex_);
        if (preview->callbacks_.frame) {
            preview->callbacks_.frame(sample, gst_element_get_base_time(sink));
        }
    }
    gst_sample_unref(sample);
    return GST_FLOW_OK;
}
