#include "ble/bluez/dbus_value.h"

#include <cctype>

#include "common/debug_log.h"

namespace bluez {

namespace {

template <typename T>
int64_t Widen(const sdbus::Variant& v) {
    return static_cast<int64_t>(v.get<T>());
}

Value ToValue(const sdbus::Variant& variant) {
    const std::string type = variant.peekValueType();
    if (type == "b") {
        return variant.get<bool>();
    }
    if (type == "y") {
        return Widen<uint8_t>(variant);
    }
    if (type == "n") {
        return Widen<int16_t>(variant);
    }
    if (type == "q") {
        return Widen<uint16_t>(variant);
    }
    if (type == "i") {
        return Widen<int32_t>(variant);
    }
    if (type == "u") {
        return Widen<uint32_t>(variant);
    }
    if (type == "x") {
        return variant.get<int64_t>();
    }
    if (type == "s") {
        return variant.get<std::string>();
    }
    if (type == "o") {
        return std::string(variant.get<sdbus::ObjectPath>());
    }
    if (type == "as") {
        return variant.get<std::vector<std::string>>();
    }
    if (type == "ao") {
        const auto paths = variant.get<std::vector<sdbus::ObjectPath>>();
        return std::vector<std::string>(paths.begin(), paths.end());
    }
    if (type == "ay") {
        return variant.get<std::vector<uint8_t>>();
    }
    return std::monostate{};  // dictionaries and the like: not needed here
}

template <typename T>
const T* Find(const PropertyMap& properties, const std::string& key) {
    const auto it = properties.find(key);
    return it == properties.end() ? nullptr : std::get_if<T>(&it->second);
}

}  // namespace

PropertyMap ToPropertyMap(const VariantMap& properties) {
    PropertyMap result;
    for (const auto& [key, variant] : properties) {
        result.emplace(key, ToValue(variant));
    }
    return result;
}

InterfaceMap ToInterfaceMap(const VariantInterfaces& interfaces) {
    InterfaceMap result;
    for (const auto& [name, properties] : interfaces) {
        result.emplace(name, ToPropertyMap(properties));
    }
    return result;
}

bool BoolOf(const PropertyMap& properties, const std::string& key, bool fallback) {
    const bool* value = Find<bool>(properties, key);
    return value != nullptr ? *value : fallback;
}

int64_t IntOf(const PropertyMap& properties, const std::string& key, int64_t fallback) {
    const int64_t* value = Find<int64_t>(properties, key);
    return value != nullptr ? *value : fallback;
}

std::string StringOf(const PropertyMap& properties, const std::string& key,
                     const std::string& fallback) {
    const std::string* value = Find<std::string>(properties, key);
    return value != nullptr ? *value : fallback;
}

std::vector<std::string> StringsOf(const PropertyMap& properties, const std::string& key) {
    const auto* value = Find<std::vector<std::string>>(properties, key);
    return value != nullptr ? *value : std::vector<std::string>{};
}

std::vector<uint8_t> BytesOf(const PropertyMap& properties, const std::string& key) {
    const auto* value = Find<std::vector<uint8_t>>(properties, key);
    return value != nullptr ? *value : std::vector<uint8_t>{};
}

uint64_t AddressFromText(const std::string& text) {
    // Exactly six pairs of hex digits with colons between them.
    constexpr size_t kLength = 17;
    if (text.size() != kLength) {
        return 0;
    }
    uint64_t address = 0;
    for (size_t i = 0; i < kLength; ++i) {
        const char c = text[i];
        if (i % 3 == 2) {
            if (c != ':') {
                return 0;
            }
            continue;
        }
        if (std::isxdigit(static_cast<unsigned char>(c)) == 0) {
            return 0;
        }
        const int digit = std::isdigit(static_cast<unsigned char>(c)) != 0
                              ? c - '0'
                              : std::tolower(static_cast<unsigned char>(c)) - 'a' + 10;
        address = address << 4 | static_cast<uint64_t>(digit);
    }
    return address;
}

BleResult ResultOf(const sdbus::Error& error) {
    const std::string& name = error.getName();
    if (name == "org.bluez.Error.NotReady") {
        return BLE_ERR_RADIO_OFF;
    }
    if (name == "org.bluez.Error.InProgress" || name == "org.bluez.Error.AlreadyConnected" ||
        name == "org.bluez.Error.AlreadyExists") {
        return BLE_ERR_BUSY;
    }
    if (name == "org.bluez.Error.NotConnected") {
        return BLE_ERR_NOT_CONNECTED;
    }
    if (name == "org.bluez.Error.DoesNotExist" ||
        name == "org.freedesktop.DBus.Error.UnknownObject" ||
        name == "org.freedesktop.DBus.Error.UnknownMethod") {
        return BLE_ERR_NOT_FOUND;
    }
    if (name == "org.bluez.Error.NotSupported" || name == "org.bluez.Error.NotPermitted") {
        return BLE_ERR_NOT_SUPPORTED;
    }
    if (name == "org.bluez.Error.AuthenticationFailed" ||
        name == "org.bluez.Error.AuthenticationRejected" ||
        name == "org.bluez.Error.AuthenticationCanceled" || name == "org.bluez.Error.Rejected") {
        return BLE_ERR_AUTH;
    }
    if (name == "org.freedesktop.DBus.Error.NoReply" ||
        name == "org.freedesktop.DBus.Error.Timeout" ||
        name == "org.freedesktop.DBus.Error.TimedOut") {
        return BLE_ERR_TIMEOUT;
    }
    if (name == "org.freedesktop.DBus.Error.ServiceUnknown" ||
        name == "org.freedesktop.DBus.Error.NameHasNoOwner" ||
        name == "org.freedesktop.DBus.Error.Disconnected") {
        return BLE_ERR_NOT_OPEN;
    }
    return BLE_ERR_FAILED;
}

BleResult LogFailure(const char* function, int line, const char* call, const sdbus::Error& error) {
    const BleResult result = ResultOf(error);
    PrintErr(function, line, "%s error:0x%x (%s)\n", call, static_cast<unsigned>(result),
             error.getName().c_str());
    return result;
}

}  // namespace bluez
