// org.bluez.GattCharacteristic1: a remote characteristic, under its service.
#pragma once

#include <sdbus-c++/sdbus-c++.h>

#include <chrono>
#include <memory>
#include <string>
#include <vector>

#include "ble/bluez/dbus_value.h"

namespace bluez {

class GattCharacteristic1 {
public:
    struct State {
        std::string uuid;
        std::string service;
        std::vector<std::string> flags;
        bool notifying = false;

        bool Has(const std::string& flag) const;
    };
    static State Read(const PropertyMap& properties);

    GattCharacteristic1(sdbus::IConnection& connection, const std::string& path,
                        std::chrono::milliseconds timeout);

    // A session already running counts as success: bluetoothd keeps
    // notifying across a link loss and answers a repeat with an error.
    BleResult StartNotify();
    BleResult StopNotify();
    // `type` is "command" (without response) or "request".
    BleResult WriteValue(const std::vector<uint8_t>& value, const std::string& type);

private:
    std::unique_ptr<sdbus::IProxy> proxy_;
    std::chrono::milliseconds timeout_;
};

}  // namespace bluez
