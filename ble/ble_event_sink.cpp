#include "ble/ble_event_sink.h"

void BleEventSink::Set(BleStackEvents* events) {
    std::lock_guard lock(mutex_);
    events_ = events;
}
