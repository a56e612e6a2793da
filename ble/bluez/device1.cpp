#include "ble/bluez/device1.h"

#include "ble/bluez/bluez_names.h"

namespace bluez {

Device1::State Device1::Read(const PropertyMap& properties) {
    State state;
    state.address = AddressFromText(StringOf(properties, "Address"));
    state.name = StringOf(properties, "Name", StringOf(properties, "Alias"));
    state.adapter = StringOf(properties, "Adapter");
    state.connected = BoolOf(properties, "Connected");
    state.servicesResolved = BoolOf(properties, "ServicesResolved");
    state.classic = properties.count("Class") != 0;
    state.hasRssi = properties.count("RSSI") != 0;
    return state;
}

Device1::Device1(sdbus::IConnection& connection, const std::string& path,
                 std::chrono::milliseconds timeout)
    : proxy_(sdbus::createProxy(connection, kService, path)), timeout_(timeout) {}

BleResult Device1::ConnectAsync(std::chrono::milliseconds timeout,
                                std::function<void(BleResult)> done) {
    try {
        proxy_->callMethodAsync("Connect")
            .onInterface(kDeviceInterface)
            .withTimeout(timeout)
            .uponReplyInvoke([done = std::move(done)](const sdbus::Error* error) {
                done(error == nullptr
                         ? BLE_OK
                         : LogFailure("bluez::Device1::ConnectAsync", __LINE__, "Connect", *error));
            });
    } catch (const sdbus::Error& error) {
        return LOG_DBUS_FAILURE("Connect", error);
    }
    return BLE_OK;
}

BleResult Device1::Disconnect() {
    return DBUS_CALL(*proxy_, kDeviceInterface, "Disconnect", timeout_, [](const sdbus::Error& e) {
        return e.getName() == "org.bluez.Error.NotConnected";
    });
}

}  // namespace bluez
