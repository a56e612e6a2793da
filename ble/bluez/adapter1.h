// org.bluez.Adapter1: one local radio.
#pragma once

#include <sdbus-c++/sdbus-c++.h>

#include <chrono>
#include <memory>
#include <string>

#include "ble/bluez/dbus_value.h"

namespace bluez {

class Adapter1 {
public:
    struct State {
        std::string address;
        bool powered = false;
        bool discovering = false;
    };
    static State Read(const PropertyMap& properties);

    Adapter1(sdbus::IConnection& connection, const std::string& path,
             std::chrono::milliseconds timeout);

    // {"Transport": "le"}: LE devices only.
    BleResult SetLeDiscoveryFilter();
    BleResult StartDiscovery();
    BleResult StopDiscovery();

private:
    std::unique_ptr<sdbus::IProxy> proxy_;
    std::chrono::milliseconds timeout_;
};

}  // namespace bluez
