// Time limits of the BlueZ backend; tests shorten them.
#pragma once

#include <chrono>

struct BluezTiming {
    // Device1.Connect: shorter than the 25 s D-Bus default, which an
    // unreachable device can outlast.
    std::chrono::milliseconds connect{10000};
    // From Connect's reply to ServicesResolved; the GATT database of a known
    // device resolves in well under a second, a new one in a few.
    std::chrono::milliseconds resolve{10000};
    // Every other method call: local to bluetoothd, answered at once.
    std::chrono::milliseconds call{5000};
    // bluetoothd takes its bus name before it has announced its adapters;
    // until this has passed, no adapter means "not there yet".
    std::chrono::milliseconds adapterWait{3000};
};
