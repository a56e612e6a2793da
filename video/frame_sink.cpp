#include "video/frame_sink.h"

#include <gst/app/gstappsink.h>
#include <gst/video/video.h>

#include <atomic>

#include "video/gst_support.h"

namespace {

struct SinkContext {
    FrameTarget* target;
    std::atomic<uint64_t>* shown;
};

QImage ToImage(GstSample* sample) {
    GstVideoInfo info;
    GstBuffer* buffer = gst_sample_get_buffer(sample);
    if (buffer == nullptr || !gst_video_info_from_caps(&info, gst_sample_get_caps(sample))) {
        return {};
    }
    GstVideoFrame frame;
    if (!gst_video_frame_map(&frame, &info, buffer, GST_MAP_READ)) {
        return {};
    }
    // BGRx in memory is what QImage calls RGB32 on a little-endian machine.
    QImage image = QImage(static_cast<const uchar*>(GST_VIDEO_FRAME_PLANE_DATA(&frame, 0)),
                          GST_VIDEO_FRAME_WIDTH(&frame), GST_VIDEO_FRAME_HEIGHT(&frame),
                          GST_VIDEO_FRAME_PLANE_STRIDE(&frame, 0), QImage::Format_RGB32)
                       .copy();
    gst_video_frame_unmap(&frame);
    return image;
}

GstFlowReturn Deliver(GstAppSink* sink, gpointer data, bool preroll) {
    auto* context = static_cast<SinkContext*>(data);
    GstSample* sample = preroll ? gst_app_sink_pull_preroll(sink) : gst_app_sink_pull_sample(sink);
    if (sample == nullptr) {
        return GST_FLOW_OK;
    }
    QImage image = ToImage(sample);
    gst_sample_unref(sample);
    if (!image.isNull()) {
        context->target->PresentFrame(std::move(image));
        if (context->shown != nullptr) {
            context->shown->fetch_add(1);
        }
    }
    return GST_FLOW_OK;
}

GstFlowReturn OnSample(GstAppSink* sink, gpointer data) {
    return Deliver(sink, data, false);
}

// A paused clip shows its first picture.
GstFlowReturn OnPreroll(GstAppSink* sink, gpointer data) {
    return Deliver(sink, data, true);
}

void FreeContext(gpointer data) {
    delete static_cast<SinkContext*>(data);
}

}  // namespace

GstElement* MakeFrameSink(const char* name, FrameTarget* target, bool sync,
                          std::atomic<uint64_t>* shown) {
    GstElement* sink = MakeElement("appsink", name);
    if (sink == nullptr) {
        return nullptr;
    }
    GstCapsPtr caps(gst_caps_new_simple("video/x-raw", "format", G_TYPE_STRING, "BGRx", nullptr));
    // One frame waits at most: a busy window skips frames, it never delays them.
    g_object_set(sink, "caps", caps.get(), "sync", sync, "max-buffers", 1u, "drop", TRUE, "qos",
                 FALSE, nullptr);
    GstAppSinkCallbacks callbacks{};
    callbacks.new_sample = OnSample;
    callbacks.new_preroll = OnPreroll;
    gst_app_sink_set_callbacks(GST_APP_SINK(sink), &callbacks, new SinkContext{target, shown},
                               FreeContext);
    return sink;
}
