// The backend's mirror of org.bluez's objects and their properties, kept up
// to date from the object manager and the property signals.
#pragma once

#include <mutex>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "ble/bluez/bluez_bus.h"
#include "ble/bluez/dbus_value.h"

namespace bluez {

class ObjectTree {
public:
    void Reset(const ObjectMap& objects);
    void Clear();
    void Apply(const BusEvent& event);

    // The objects that carry `interface`, with its properties, in path
    // order (for GATT objects that is handle order).
    std::vector<std::pair<std::string, PropertyMap>> ObjectsWith(
        const std::string& interface) const;
    std::optional<PropertyMap> Properties(const std::string& path,
                                          const std::string& interface) const;

private:
    mutable std::mutex mutex_;  // guards objects_
    ObjectMap objects_;
};

}  // namespace bluez
