// The BlueZ backend, on the system bus (found through DBUS_SYSTEM_BUS_ADDRESS
// like every D-Bus client).
#pragma once

#include <memory>

#include "ble/ble_stack.h"
#include "ble/bluez/bluez_timing.h"

std::unique_ptr<BleStack> MakeBluezStack(const BluezTiming& timing = {});
