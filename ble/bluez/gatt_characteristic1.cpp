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
    return DBUS_CALL(*proxy_, kCharacteristicInterface, "StartNotify", timeout_,
                     [](const sdbus::Error& e) {
                         return e.getName() == "org.bluez.Error.InProgress" ||
                                e.getMessage() == "Already notifying";
                     });
}

BleResult GattCharacteristic1::StopNotify() {
    return DBUS_CALL(*proxy_, kCharacteristicInterface, "StopNotify", timeout_, {});
}

BleResult GattCharacteristic1::WriteValue(const std::vector<uint8_t>& value,
                                          const std::string& type) {
    const VariantMap options{{"type", sdbus::Variant(type)}};
    return DBUS_CALL(*proxy_, kCharacteristicInterface, "WriteValue", timeout_, {}, value, options);
}

}  // namespace bluez
