#include "ble/bluez/gatt_characteristic1.h"

#include <algorithm>

#include "ble/bluez/bluez_names.h"

namespace bluez {

bool GattCharacteristic1::State::Has(const std::string& flag) const {
    return std::find(flags.begin(), flags.end(), flag) != flags.end();
}

GattCharacteristic1::State GattCharacteristic1::Read(const PropertyMap& properties) {
    State state;
    state.uuid = StringOf(properties, "UUID");
    state.service = StringOf(properties, "Service");
    state.flags = StringsOf(properties, "Flags");
    state.notifying = BoolOf(properties, "Notifying");
    return state;
}

GattCharacteristic1::GattCharacteristic1(sdbus::IConnection& connection, const std::string& path,
                                         std::chrono::milliseconds timeout)
    : proxy_(sdbus::createProxy(connection, kService, path)), timeout_(timeout) {}

BleResult GattCharacteristic1::StartNotify() {
    try {
        proxy_->callMethod("StartNotify")
            .onInterface(kCharacteristicInterface)
            .withTimeout(timeout_);
    } catch (const sdbus::Error& error) {
        if (error.getName() == "org.bluez.Error.InProgress" ||
            error.getMessage() == "Already notifying") {
            return BLE_OK;
        }
        return LOG_DBUS_FAILURE("StartNotify", error);
    }
    return BLE_OK;
}

BleResult GattCharacteristic1::StopNotify() {
    try {
        proxy_->callMethod("StopNotify")
            .onInterface(kCharacteristicInterface)
            .withTimeout(timeout_);
    } catch (const sdbus::Error& error) {
        return LOG_DBUS_FAILURE("StopNotify", error);
    }
    return BLE_OK;
}

BleResult GattCharacteristic1::WriteValue(const std::vector<uint8_t>& value,
                                          const std::string& type) {
    const VariantMap options{{"type", sdbus::Variant(type)}};
    try {
        proxy_->callMethod("WriteValue")
            .onInterface(kCharacteristicInterface)
            .withTimeout(timeout_)
            .withArguments(value, options);
    } catch (const sdbus::Error& error) {
        return LOG_DBUS_FAILURE("WriteValue", error);
    }
    return BLE_OK;
}

}  // namespace bluez
