#include "tests/video/video_test_support.h"

#include <gst/gst.h>
#include <gtest/gtest.h>

#include <QScreen>
#include <QWidget>

#include "tests/support/test_support.h"
#include "tests/ui/gui_test_app.h"

namespace orv::test {

void UseGui() {
    GuiTestApp();
    ASSERT_TRUE(EnsureGStreamer());
}

void PumpFor(std::chrono::milliseconds duration) {
    const auto end = std::chrono::steady_clock::now() + duration;
    ProcessEventsUntil([&] { return std::chrono::steady_clock::now() >= end; }, duration * 2);
}

CaptureSources TestSources() {
    CaptureSources sources;
    sources.camera = CameraSource::TestPattern(640, 480, 30);
    sources.microphone = MicrophoneSource();
    return sources;
}

namespace {

GstPadProbeReturn CountFrame(GstPad* pad, GstPadProbeInfo* info, gpointer data) {
    auto* result = static_cast<DecodeResult*>(data);
    GstBuffer* buffer = GST_PAD_PROBE_INFO_BUFFER(info);
    if (result->frames++ == 0) {
        GstCaps* caps = gst_pad_get_current_caps(pad);
        gst_structure_get_int(gst_caps_get_structure(caps, 0), "width", &result->width);
        gst_structure_get_int(gst_caps_get_structure(caps, 0), "height", &result->height);
        gst_caps_unref(caps);
    }
    if (GST_BUFFER_PTS_IS_VALID(buffer)) {
        result->lastSeconds =
            std::max(result->lastSeconds, static_cast<double>(GST_BUFFER_PTS(buffer)) / GST_SECOND);
    }
    return GST_PAD_PROBE_OK;
}

// Runs a pipeline description to its end; `count`, when given, learns what
// reaches the element named "out" and the length the file gives.
bool RunToEnd(const std::string& description, DecodeResult* count = nullptr) {
    GstElement* pipeline = gst_parse_launch(description.c_str(), nullptr);
    if (pipeline == nullptr) {
        return false;
    }
    if (count != nullptr) {
        GstElement* sink = gst_bin_get_by_name(GST_BIN(pipeline), "out");
        GstPad* pad = gst_element_get_static_pad(sink, "sink");
        gst_pad_add_probe(pad, GST_PAD_PROBE_TYPE_BUFFER, CountFrame, count, nullptr);
        gst_object_unref(pad);
        gst_object_unref(sink);
    }
    gst_element_set_state(pipeline, GST_STATE_PLAYING);
    GstBus* bus = gst_element_get_bus(pipeline);
    GstMessage* message = gst_bus_timed_pop_filtered(
        bus, 20 * GST_SECOND, static_cast<GstMessageType>(GST_MESSAGE_EOS | GST_MESSAGE_ERROR));
    const bool ok = message != nullptr && GST_MESSAGE_TYPE(message) == GST_MESSAGE_EOS;
    if (message != nullptr) {
        gst_message_unref(message);
    }
    gint64 duration = 0;
    if (count != nullptr && gst_element_query_duration(pipeline, GST_FORMAT_TIME, &duration)) {
        count->seconds = static_cast<double>(duration) / GST_SECOND;
    }
    gst_object_unref(bus);
    gst_element_set_state(pipeline, GST_STATE_NULL);
    gst_object_unref(pipeline);
    return ok;
}

}  // namespace

DecodeResult DecodeVideo(const std::string& path) {
    DecodeResult result;
    // Only an MP4 of H.264 gets through to the end.
    result.ok =
        RunToEnd("filesrc location=\"" + path +
                     "\" ! qtdemux ! video/x-h264 ! h264parse ! openh264dec ! fakesink name=out",
                 &result);
    return result;
}

bool MakeClip(const std::string& path, double seconds) {
    return RunToEnd("videotestsrc num-buffers=" + std::to_string(static_cast<int>(seconds * 30)) +
                    " ! video/x-raw,format=I420,width=320,height=240,framerate=30/1 ! openh264enc"
                    " ! h264parse ! mp4mux ! filesink location=\"" +
                    path + '"');
}

bool AllBlack(const QImage& image) {
    const QImage rgb = image.convertToFormat(QImage::Format_RGB32);
    for (int y = 0; y < rgb.height(); ++y) {
        const auto* line = reinterpret_cast<const QRgb*>(rgb.constScanLine(y));
        for (int x = 0; x < rgb.width(); ++x) {
            if ((line[x] & 0xFFFFFF) != 0) {
                return false;
            }
        }
    }
    return true;
}

QImage GrabScreen(const QWidget* window) {
    QScreen* screen = QGuiApplication::primaryScreen();
    return screen->grabWindow(0, window->x(), window->y(), window->width(), window->height())
        .toImage();
}

}  // namespace orv::test
