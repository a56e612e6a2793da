// Lists the machine's cameras through one device monitor kept for the life of
// the program (a monitor per listing leaks memory and descriptors).
#pragma once

#include <gst/gst.h>

#include <string>
#include <vector>

#include "video/camera_source.h"
#include "video/result_codes.h"

class EnumCameraDevice {
public:
    EnumCameraDevice() = default;
    ~EnumCameraDevice();
    EnumCameraDevice(const EnumCameraDevice&) = delete;
    EnumCameraDevice& operator=(const EnumCameraDevice&) = delete;

    // Fills the list with the current "Video/Source" devices.
    HRESULT EnumDevice();

    int Count() const { return static_cast<int>(m_ppDevices.size()); }
    std::string Name(int index) const;
    // A source for device `index`; an invalid source when out of range.
    CameraSource Source(int index) const;

private:
    void Clear();

    std::vector<GstDevice*> m_ppDevices;  // one reference each
};
