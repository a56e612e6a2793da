// Text that bluetoothd hands over: UUIDs of services and characteristics,
// device addresses. Parsing must never read outside the text, and what
// parses must print back to the same identifier.
#include <cstdint>
#include <string>

#include "ble/bluez/dbus_value.h"
#include "ble/gatt_uuid.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    const GattUuid uuid = GattUuid::Parse(text);
    if (uuid.IsValid()) {
        const GattUuid again = GattUuid::Parse(uuid.ToString());
        if (!(again == uuid) || again.ToString().size() != 36) {
            __builtin_trap();
        }
    }
    const uint64_t address = bluez::AddressFromText(text);
    if (address > 0xFFFFFFFFFFFFull) {
        __builtin_trap();
    }
    return 0;
}
