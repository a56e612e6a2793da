#include "video/camera_source.h"

#include <cstdlib>

#include "common/debug_log.h"
#include "video/gst_support.h"

namespace {

struct ModeCandidate {
    CameraMode mode;
    std::string format;
    bool compressed = false;
    bool valid = false;
};

// Prefers raw over JPEG, then 640x480, then the smallest size at least 320
// wide, then the rate nearest 30: less to convert, and a known bit rate.
int Score(const ModeCandidate& c) {
    int score = c.compressed ? 0 : 1'000'000;
    if (c.mode.width == 640 && c.mode.height == 480) {
        score += 100'000;
    } else if (c.mode.width >= 320) {
        score += 50'000 - c.mode.width;
    }
    const int fps = c.mode.fpsDen > 0 ? c.mode.fpsNum / c.mode.fpsDen : 0;
    return score - std::abs(fps - 30);
}

ModeCandidate ReadStructure(const GstStructure* s) {
    ModeCandidate c;
    const bool raw = gst_structure_has_name(s, "video/x-raw");
    c.compressed = gst_structure_has_name(s, "image/jpeg");
    if (!raw && !c.compressed) {
        return c;
    }
    GstStructure* fixed = gst_structure_copy(s);
    gst_structure_fixate_field_nearest_int(fixed, "width", 640);
    gst_structure_fixate_field_nearest_int(fixed, "height", 480);
    gst_structure_fixate_field_nearest_fraction(fixed, "framerate", 30, 1);
    if (raw && gst_structure_has_field(fixed, "format")) {
        gst_structure_fixate_field(fixed, "format");
        const char* format = gst_structure_get_string(fixed, "format");
        c.format = format != nullptr ? format : "";
    }
    c.valid = gst_structure_get_int(fixed, "width", &c.mode.width) &&
              gst_structure_get_int(fixed, "height", &c.mode.height) &&
              gst_structure_get_fraction(fixed, "framerate", &c.mode.fpsNum, &c.mode.fpsDen);
    gst_structure_free(fixed);
    return c;
}

}  // namespace

CameraSource CameraSource::TestPattern(int width, int height, int fpsNum, int fpsDen) {
    CameraSource source;
    source.mode_ = {width, height, fpsNum, fpsDen};
    source.name_ = "videotestsrc";
    return source;
}

CameraSource CameraSource::Device(GstDevice* device) {
    CameraSource source;
    if (device == nullptr) {
        return source;
    }
    GstCapsPtr caps(gst_device_get_caps(device));
    ModeCandidate best;
    for (guint i = 0; caps && i < gst_caps_get_size(caps.get()); ++i) {
        const ModeCandidate c = ReadStructure(gst_caps_get_structure(caps.get(), i));
        if (c.valid && (!best.valid || Score(c) > Score(best))) {
            best = c;
        }
    }
    if (!best.valid) {
        return source;
    }
    source.device_.reset(GST_DEVICE(gst_object_ref(device)), GstObjectUnref());
    source.mode_ = best.mode;
    source.format_ = best.format;
    source.compressed_ = best.compressed;
    gchar* name = gst_device_get_display_name(device);
    source.name_ = name != nullptr ? name : "";
    g_free(name);
    return source;
}

GstElement* CameraSource::CreateElement() const {
    if (!IsValid()) {
        return nullptr;
    }
    GstElement* src = device_ ? gst_device_create_element(device_.get(), "camera")
                              : MakeElement("videotestsrc", "camera");
    if (src == nullptr) {
        LOG_ERROR("CreateElement error:0x%x\n",
                  static_cast<unsigned>(MF_E_NO_CAPTURE_DEVICES_AVAILABLE));
        return nullptr;
    }
    if (!device_) {
        g_object_set(src, "is-live", TRUE, nullptr);
    }
    GstCaps* caps =
        gst_caps_new_simple(compressed_ ? "image/jpeg" : "video/x-raw", "width", G_TYPE_INT,
                            mode_.width, "height", G_TYPE_INT, mode_.height, "framerate",
                            GST_TYPE_FRACTION, mode_.fpsNum, mode_.fpsDen, nullptr);
    if (!format_.empty()) {
        gst_caps_set_simple(caps, "format", G_TYPE_STRING, format_.c_str(), nullptr);
    }
    GstElement* filter = MakeElement("capsfilter", "camera-mode");
    GstElement* decoder = compressed_ ? MakeElement("jpegdec", nullptr) : nullptr;
    GstElement* bin = gst_bin_new("camera-bin");
    if (filter == nullptr || (compressed_ && decoder == nullptr)) {
        gst_caps_unref(caps);
        for (GstElement* element : {src, filter, decoder, bin}) {
            if (element != nullptr) {
                gst_object_unref(gst_object_ref_sink(element));
            }
        }
        return nullptr;
    }
    g_object_set(filter, "caps", caps, nullptr);
    gst_caps_unref(caps);
    const bool linked = compressed_ ? AddAndLink(GST_BIN(bin), {src, filter, decoder})
                                    : AddAndLink(GST_BIN(bin), {src, filter});
    GstPtr<GstPad> pad(gst_element_get_static_pad(compressed_ ? decoder : filter, "src"));
    if (!linked || !gst_element_add_pad(bin, gst_ghost_pad_new("src", pad.get()))) {
        gst_object_unref(gst_object_ref_sink(bin));
        return nullptr;
    }
    return bin;
}
