#include "tests/video/video_test_support.h"

#include <gst/pbutils/pbutils.h>
#include <gtest/gtest.h>

#include <QApplication>
#include <QScreen>
#include <QWidget>

#include <filesystem>
#include <fstream>
#include <memory>
#include <thread>

#include <malloc.h>
#include <unistd.h>

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

ClipInfo Discover(const std::string& path) {
    ClipInfo clip;
    GError* error = nullptr;
    GstDiscoverer* discoverer = gst_discoverer_new(5 * GST_SECOND, &error);
    g_clear_error(&error);
    gchar* uri = gst_filename_to_uri(path.c_str(), nullptr);
    GstDiscovererInfo* info = gst_discoverer_discover_uri(discoverer, uri, &error);
    g_free(uri);
    g_clear_error(&error);
    if (info != nullptr && gst_discoverer_info_get_result(info) == GST_DISCOVERER_OK) {
        clip.ok = true;
        clip.seconds = static_cast<double>(gst_discoverer_info_get_duration(info)) / GST_SECOND;
        GList* videos = gst_discoverer_info_get_video_streams(info);
        if (videos != nullptr) {
            auto* video = GST_DISCOVERER_VIDEO_INFO(videos->data);
            clip.width = static_cast<int>(gst_discoverer_video_info_get_width(video));
            clip.height = static_cast<int>(gst_discoverer_video_info_get_height(video));
            GstCaps* caps = gst_discoverer_stream_info_get_caps(GST_DISCOVERER_STREAM_INFO(video));
            clip.videoCaps = gst_structure_get_name(gst_caps_get_structure(caps, 0));
            gst_caps_unref(caps);
        }
        gst_discoverer_stream_info_list_free(videos);
        GList* audios = gst_discoverer_info_get_audio_streams(info);
        if (audios != nullptr) {
            GstCaps* caps =
                gst_discoverer_stream_info_get_caps(GST_DISCOVERER_STREAM_INFO(audios->data));
            clip.audioCaps = gst_structure_get_name(gst_caps_get_structure(caps, 0));
            gst_caps_unref(caps);
        }
        gst_discoverer_stream_info_list_free(audios);
        GstDiscovererStreamInfo* top = gst_discoverer_info_get_stream_info(info);
        if (top != nullptr) {
            GstCaps* caps = gst_discoverer_stream_info_get_caps(top);
            clip.container = gst_structure_get_name(gst_caps_get_structure(caps, 0));
            gst_caps_unref(caps);
            gst_discoverer_stream_info_unref(top);
        }
    }
    if (info != nullptr) {
        gst_discoverer_info_unref(info);
    }
    g_object_unref(discoverer);
    return clip;
}

namespace {

struct DecodeCount {
    int frames = 0;
    GstClockTime last = 0;
};

GstPadProbeReturn CountFrame(GstPad*, GstPadProbeInfo* info, gpointer data) {
    auto* count = static_cast<DecodeCount*>(data);
    GstBuffer* buffer = GST_PAD_PROBE_INFO_BUFFER(info);
    ++count->frames;
    if (GST_BUFFER_PTS_IS_VALID(buffer)) {
        count->last = std::max(count->last, GST_BUFFER_PTS(buffer));
    }
    return GST_PAD_PROBE_OK;
}

}  // namespace

DecodeResult DecodeVideo(const std::string& path) {
    DecodeResult result;
    gchar* escaped = g_strescape(path.c_str(), nullptr);
    const std::string description = std::string("filesrc location=\"") + escaped +
                                    "\" ! qtdemux ! h264parse ! openh264dec ! fakesink name=out";
    g_free(escaped);
    GstElement* pipeline = gst_parse_launch(description.c_str(), nullptr);
    if (pipeline == nullptr) {
        return result;
    }
    DecodeCount count;
    GstElement* sink = gst_bin_get_by_name(GST_BIN(pipeline), "out");
    GstPad* pad = gst_element_get_static_pad(sink, "sink");
    gst_pad_add_probe(pad, GST_PAD_PROBE_TYPE_BUFFER, CountFrame, &count, nullptr);
    gst_object_unref(pad);
    gst_object_unref(sink);
    gst_element_set_state(pipeline, GST_STATE_PLAYING);
    GstBus* bus = gst_element_get_bus(pipeline);
    GstMessage* message = gst_bus_timed_pop_filtered(
        bus, 20 * GST_SECOND, static_cast<GstMessageType>(GST_MESSAGE_EOS | GST_MESSAGE_ERROR));
    result.ok = message != nullptr && GST_MESSAGE_TYPE(message) == GST_MESSAGE_EOS;
    if (message != nullptr) {
        gst_message_unref(message);
    }
    gst_object_unref(bus);
    gst_element_set_state(pipeline, GST_STATE_NULL);
    gst_object_unref(pipeline);
    result.frames = count.frames;
    result.lastSeconds = static_cast<double>(count.last) / GST_SECOND;
    return result;
}

namespace {

// Runs a pipeline description to its end.
bool RunToEnd(const std::string& description) {
    GstElement* pipeline = gst_parse_launch(description.c_str(), nullptr);
    if (pipeline == nullptr) {
        return false;
    }
    gst_element_set_state(pipeline, GST_STATE_PLAYING);
    GstBus* bus = gst_element_get_bus(pipeline);
    GstMessage* message = gst_bus_timed_pop_filtered(
        bus, 20 * GST_SECOND, static_cast<GstMessageType>(GST_MESSAGE_EOS | GST_MESSAGE_ERROR));
    const bool ok = message != nullptr && GST_MESSAGE_TYPE(message) == GST_MESSAGE_EOS;
    if (message != nullptr) {
        gst_message_unref(message);
    }
    gst_object_unref(bus);
    gst_element_set_state(pipeline, GST_STATE_NULL);
    gst_object_unref(pipeline);
    return ok;
}

}  // namespace

bool MakeClip(const std::string& path, double seconds) {
    gchar* escaped = g_strescape(path.c_str(), nullptr);
    const std::string description =
        "videotestsrc num-buffers=" + std::to_string(static_cast<int>(seconds * 30)) +
        " ! video/x-raw,format=I420,width=320,height=240,framerate=30/1 ! openh264enc ! "
        "h264parse ! mp4mux ! filesink location=\"" +
        std::string(escaped) + "\"";
    g_free(escaped);
    return RunToEnd(description);
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

namespace {

int CountEntries(const char* folder) {
    int count = 0;
    for ([[maybe_unused]] const auto& entry : std::filesystem::directory_iterator(folder)) {
        ++count;
    }
    return count;
}

}  // namespace

int ThreadCount() {
    return CountEntries("/proc/self/task");
}

int OpenFdCount() {
    return CountEntries("/proc/self/fd");
}

std::string ThreadNames() {
    std::string names;
    for (const auto& entry : std::filesystem::directory_iterator("/proc/self/task")) {
        std::ifstream comm(entry.path() / "comm");
        std::string name;
        std::getline(comm, name);
        names += name + ";";
    }
    return names;
}

bool LibraryLoaded(const std::string& part) {
    std::ifstream maps("/proc/self/maps");
    std::string line;
    while (std::getline(maps, line)) {
        if (line.find(part) != std::string::npos) {
            return true;
        }
    }
    return false;
}

}  // namespace orv::test
