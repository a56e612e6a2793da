// Names on the bus that the backend and its tests share.
#pragma once

namespace bluez {

inline constexpr const char* kService = "org.bluez";
inline constexpr const char* kRootPath = "/";
inline constexpr const char* kBluezPath = "/org/bluez";
inline constexpr const char* kAdapterInterface = "org.bluez.Adapter1";
inline constexpr const char* kDeviceInterface = "org.bluez.Device1";
inline constexpr const char* kServiceInterface = "org.bluez.GattService1";
inline constexpr const char* kCharacteristicInterface = "org.bluez.GattCharacteristic1";
inline constexpr const char* kAgentManagerInterface = "org.bluez.AgentManager1";
inline constexpr const char* kAgentInterface = "org.bluez.Agent1";
inline constexpr const char* kObjectManagerInterface = "org.freedesktop.DBus.ObjectManager";
inline constexpr const char* kPropertiesInterface = "org.freedesktop.DBus.Properties";

}  // namespace bluez
