// Plain copies of D-Bus property values, so that what the bus delivers can
// cross threads and nothing above this folder sees a D-Bus type.
#pragma once

#include <sdbus-c++/sdbus-c++.h>

#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <variant>
#include <vector>

#include "ble/ble_stack.h"

namespace bluez {

// Integers of every width widen to int64; object paths become strings.
using Value = std::variant<std::monostate, bool, int64_t, std::string, std::vector<std::string>,
                           std::vector<uint8_t>>;
using PropertyMap = std::map<std::string, Value>;
using InterfaceMap = std::map<std::string, PropertyMap>;
using ObjectMap = std::map<std::string, InterfaceMap>;

using VariantMap = std::map<std::string, sdbus::Variant>;
using VariantInterfaces = std::map<std::string, VariantMap>;
using ManagedObjects = std::map<sdbus::ObjectPath, VariantInterfaces>;

PropertyMap ToPropertyMap(const VariantMap& properties);
InterfaceMap ToInterfaceMap(const VariantInterfaces& interfaces);

// Typed reads: `fallback` when the key is absent or holds another type.
bool BoolOf(const PropertyMap& properties, const std::string& key, bool fallback = false);
int64_t IntOf(const PropertyMap& properties, const std::string& key, int64_t fallback = 0);
std::string StringOf(const PropertyMap& properties, const std::string& key,
                     const std::string& fallback = {});
std::vector<std::string> StringsOf(const PropertyMap& properties, const std::string& key);
std::vector<uint8_t> BytesOf(const PropertyMap& properties, const std::string& key);

// "AA:BB:CC:DD:EE:FF" <-> 0xAABBCCDDEEFF; 0 for malformed text.
uint64_t AddressFromText(const std::string& text);

// The stack result for a D-Bus error reply.
BleResult ResultOf(const sdbus::Error& error);
// Logs a failed call once, as "<call> error:0x%x (<D-Bus error name>)" under
// the caller's tag, and returns its stack result.
BleResult LogFailure(const char* function, int line, const char* call, const sdbus::Error& error);

// Errors that mean the call achieved what it was for.
using Harmless = std::function<bool(const sdbus::Error&)>;

// One method call without results. An error is logged once under the
// caller's tag and becomes its stack result, unless it is harmless.
template <typename... Args>
BleResult Call(const char* function, int line, sdbus::IProxy& proxy, const char* interface,
               const char* method, std::chrono::milliseconds timeout, const Harmless& harmless,
               Args&&... args) {
    try {
        proxy.callMethod(method).onInterface(interface).withTimeout(timeout).withArguments(
            std::forward<Args>(args)...);
    } catch (const sdbus::Error& error) {
        if (harmless && harmless(error)) {
            return BLE_OK;
        }
        return LogFailure(function, line, method, error);
    }
    return BLE_OK;
}

}  // namespace bluez

#define DBUS_CALL(...) ::bluez::Call(__PRETTY_FUNCTION__, __LINE__, __VA_ARGS__)

#define LOG_DBUS_FAILURE(call, error) \
    ::bluez::LogFailure(__PRETTY_FUNCTION__, __LINE__, call, error)
