#include "video/gst_support.h"

#include "common/debug_log.h"

bool EnsureGStreamer() {
    GError* error = nullptr;
    // gst_init_check is idempotent and serialised inside GStreamer.
    if (!gst_init_check(nullptr, nullptr, &error)) {
        LOG_ERROR("gst_init_check error:0x%x\n", static_cast<unsigned>(E_FAIL));
        if (error != nullptr) {
            g_error_free(error);
        }
        return false;
    }
    return true;
}

GstElement* MakeElement(const char* factory, const char* name) {
    GstElement* element = gst_element_factory_make(factory, name);
    if (element == nullptr) {
        LOG_ERROR("gst_element_factory_make(%s) error:0x%x\n", factory,
                  static_cast<unsigned>(E_FAIL));
    }
    return element;
}

bool AddAndLink(GstBin* bin, std::initializer_list<GstElement*> chain) {
    for (GstElement* element : chain) {
        gst_bin_add(bin, element);
    }
    GstElement* previous = nullptr;
    for (GstElement* element : chain) {
        if (previous != nullptr && !gst_element_link(previous, element)) {
            LOG_ERROR("gst_element_link(%s, %s) error:0x%x\n", GST_ELEMENT_NAME(previous),
                      GST_ELEMENT_NAME(element), static_cast<unsigned>(E_FAIL));
            return false;
        }
        previous = element;
    }
    return true;
}

HRESULT ResultFromError(const GError* error) {
    if (error != nullptr && error->domain == GST_RESOURCE_ERROR &&
        error->code == GST_RESOURCE_ERROR_NO_SPACE_LEFT) {
        return E_DISK_FULL;
    }
    return E_FAIL;
}

std::string DescribeError(GstMessage* message, HRESULT* result) {
    GError* error = nullptr;
    gchar* debug = nullptr;
    gst_message_parse_error(message, &error, &debug);
    std::string text = GST_OBJECT_NAME(GST_MESSAGE_SRC(message));
    text += ": ";
    text += error != nullptr ? error->message : "unknown error";
    if (result != nullptr) {
        *result = ResultFromError(error);
    }
    if (error != nullptr) {
        g_error_free(error);
    }
    g_free(debug);
    return text;
}
