// org.bluez.GattService1: a remote service, under its device's path.
#pragma once

#include <string>

#include "ble/bluez/dbus_value.h"

namespace bluez {

class GattService1 {
public:
    struct State {
        std::string uuid;
        std::string device;
        bool primary = false;
    };
    static State Read(const PropertyMap& properties);
};

}  // namespace bluez
