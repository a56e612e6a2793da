#include "ble/bluez/adapter1.h"

#include "ble/bluez/bluez_names.h"

namespace bluez {

Adapter1::State Adapter1::Read(const PropertyMap& properties) {
    State state;
    state.address = StringOf(properties, "Address");
    state.powered = BoolOf(properties, "Powered");
    state.discovering = BoolOf(properties, "Discovering");
    return state;
}

Adapter1::Adapter1(sdbus::IConnection& connection, const std::string& path,
                   std::chrono::milliseconds timeout)
    : proxy_(sdbus::createProxy(connection, kService, path)), timeout_(timeout) {}

BleResult Adapter1::SetLeDiscoveryFilter() {
    const VariantMap filter{{"Transport", sdbus::Variant(std::string("le"))}};
    try {
        proxy_->callMethod("SetDiscoveryFilter")
            .onInterface(kAdapterInterface)
            .withTimeout(timeout_)
            .withArguments(filter);
    } catch (const sdbus::Error& error) {
        return LOG_DBUS_FAILURE("SetDiscoveryFilter", error);
    }
    return BLE_OK;
}

BleResult Adapter1::StartDiscovery() {
    try {
        proxy_->callMethod("StartDiscovery").onInterface(kAdapterInterface).withTimeout(timeout_);
    } catch (const sdbus::Error& error) {
        // Our own session still running (a stop that never arrived): it is scanning.
        if (error.getName() == "org.bluez.Error.InProgress") {
            return BLE_OK;
        }
        return LOG_DBUS_FAILURE("StartDiscovery", error);
    }
    return BLE_OK;
}

BleResult Adapter1::StopDiscovery() {
    try {
        proxy_->callMethod("StopDiscovery").onInterface(kAdapterInterface).withTimeout(timeout_);
    } catch (const sdbus::Error& error) {
        return LOG_DBUS_FAILURE("StopDiscovery", error);
    }
    return BLE_OK;
}

}  // namespace bluez
