// The hook through which a stack delivers its events. Dispatch holds the lock
// for the whole call, so once Set(nullptr) returns no handler is running or
// will run.
#pragma once

#include <mutex>

#include "ble/ble_stack.h"

class BleEventSink {
public:
    void Set(BleStackEvents* events);

    template <typename Call>
    void Dispatch(Call&& call) {
        std::lock_guard lock(mutex_);
        if (events_ != nullptr) {
            call(*events_);
        }
    }

private:
    std::mutex mutex_;  // guards events_; held across each dispatched call
    BleStackEvents* events_ = nullptr;
};
