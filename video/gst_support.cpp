#include "video/gst_support.h"

#include <malloc.h>

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

void SetSyncHandler(GstElement* element, GstBusSyncHandler handler, gpointer data) {
    GstPtr<GstBus> bus(gst_element_get_bus(element));
    gst_bus_set_sync_handler(bus.get(), handler, data, nullptr);
}

GstElement* NewPipeline(const char* name, GstBusSyncHandler handler, gpointer data) {
    GstElement* pipeline = gst_pipeline_new(name);
    GstClock* clock = gst_system_clock_obtain();
    gst_pipeline_use_clock(GST_PIPELINE(pipeline), clock);
    gst_object_unref(clock);
    SetSyncHandler(pipeline, handler, data);
    return pipeline;
}

void DisposePipeline(GstElement*& pipeline) {
    if (pipeline == nullptr) {
        return;
    }
    gst_element_set_state(pipeline, GST_STATE_NULL);
    SetSyncHandler(pipeline, nullptr, nullptr);
    gst_object_unref(pipeline);
    pipeline = nullptr;
}

void ReturnFreedMemory() {
    malloc_trim(0);
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
