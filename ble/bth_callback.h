// What the GATT wrapper tells its owner. Calls may come from the wrapper's
// worker and supervision threads and from the Bluetooth stack's event thread.
#pragma once

#include <cstdint>

class BthCallback {
public:
    virtual ~BthCallback() = default;

    // 0 idle, 1 scanning, 2 connecting, 3 connected.
    virtual void OnBthConnectionState(int32_t state) = 0;
    // `data` is valid only during the call.
    virtual void OnBthData(const uint8_t* data, uint32_t size) = 0;
};
