// org.bluez.Device1: one remote device as the adapter knows it.
#pragma once

#include <sdbus-c++/sdbus-c++.h>

#include <chrono>
#include <functional>
#include <memory>
#include <string>

#include "ble/bluez/dbus_value.h"

namespace bluez {

class Device1 {
public:
    struct State {
        uint64_t address = 0;
        std::string name;  // Name, or Alias when the device sent no name
        std::string adapter;
        bool connected = false;
        bool servicesResolved = false;
        bool classic = false;  // carries a Class of Device: BR/EDR
        bool hasRssi = false;  // heard by a discovery that still runs
    };
    static State Read(const PropertyMap& properties);

    Device1(sdbus::IConnection& connection, const std::string& path,
            std::chrono::milliseconds timeout);

    // The reply comes on the bus thread. Dropping this object cancels it.
    BleResult ConnectAsync(std::chrono::milliseconds timeout, std::function<void(BleResult)> done);
    // Also cancels a connection still being made; no link is no failure.
    BleResult Disconnect();

private:
    std::unique_ptr<sdbus::IProxy> proxy_;
    std::chrono::milliseconds timeout_;
};

}  // namespace bluez
