#include "ble/bluez/gatt_service1.h"

namespace bluez {

GattService1::State GattService1::Read(const PropertyMap& properties) {
    State state;
    state.uuid = StringOf(properties, "UUID");
    state.device = StringOf(properties, "Device");
    state.primary = BoolOf(properties, "Primary");
    return state;
}

}  // namespace bluez
