#include "video/camera_devices.h"

#include "common/debug_log.h"
#include "video/gst_support.h"

namespace {

// Created on first use and kept until the process ends.
GstDeviceMonitor* CameraMonitor() {
    static GstDeviceMonitor* monitor = [] {
        GstDeviceMonitor* m = gst_device_monitor_new();
        gst_device_monitor_add_filter(m, "Video/Source", nullptr);
        return m;
    }();
    return monitor;
}

}  // namespace

EnumCameraDevice::~EnumCameraDevice() {
    Clear();
}

void EnumCameraDevice::Clear() {
    for (GstDevice* device : m_ppDevices) {
        gst_object_unref(device);
    }
    m_ppDevices.clear();
}

HRESULT EnumCameraDevice::EnumDevice() {
    Clear();
    if (!EnsureGStreamer()) {
        return E_FAIL;
    }
    // Without start() the monitor probes its providers once and keeps no threads.
    GList* devices = gst_device_monitor_get_devices(CameraMonitor());
    for (GList* item = devices; item != nullptr; item = item->next) {
        m_ppDevices.push_back(GST_DEVICE(item->data));  // the list's reference moves here
    }
    g_list_free(devices);
    return S_OK;
}

std::string EnumCameraDevice::Name(int index) const {
    if (index < 0 || index >= Count()) {
        return {};
    }
    gchar* name = gst_device_get_display_name(m_ppDevices[index]);
    std::string text = name != nullptr ? name : "";
    g_free(name);
    return text;
}

CameraSource EnumCameraDevice::Source(int index) const {
    if (index < 0 || index >= Count()) {
        return {};
    }
    return CameraSource::Device(m_ppDevices[index]);
}
