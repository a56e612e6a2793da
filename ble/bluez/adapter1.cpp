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
    return DBUS_CALL(*proxy_, kAdapterInterface, "SetDiscoveryFilter", timeout_, {}, filter);
}

BleResult Adapter1::StartDiscovery() {
    // Our own session still running (a stop that never arrived): it is scanning.
    return DBUS_CALL(
        *proxy_, kAdapterInterface, "StartDiscovery", timeout_,
        [](const sdbus::Error& e) { return e.getName() == "org.bluez.Error.InProgress"; });
}

BleResult Adapter1::StopDiscovery() {
    return DBUS_CALL(*proxy_, kAdapterInterface, "StopDiscovery", timeout_, {});
}

}  // namespace bluez
