// What the parts of the BlueZ backend share: the object mirror, the event
// thread with its hook, the open bus and the time limits.
#pragma once

#include <functional>
#include <memory>

#include "ble/ble_event_sink.h"
#include "ble/bluez/bluez_bus.h"
#include "ble/bluez/bluez_timing.h"
#include "ble/bluez/object_tree.h"
#include "ble/timer_queue.h"

namespace bluez {

struct BluezContext {
    ObjectTree& tree;
    BleEventSink& sink;
    TimerQueue& dispatcher;                          // the stack's event thread
    std::function<std::shared_ptr<BluezBus>()> bus;  // null while the manager is not open
    BluezTiming timing;
};

}  // namespace bluez
