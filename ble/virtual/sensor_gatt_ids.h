// The sensor's GATT identifiers, in BlueZ's text form.
#pragma once

inline constexpr const char* kSensorServiceUuid = "6e400001-b5a3-f393-e0a9-e50e24dcca9e";
inline constexpr const char* kSensorWriteUuid = "6e400002-b5a3-f393-e0a9-e50e24dcca9e";
inline constexpr const char* kSensorNotifyUuid = "6e400003-b5a3-f393-e0a9-e50e24dcca9e";
inline constexpr const char* kGenericAccessUuid = "00001800-0000-1000-8000-00805f9b34fb";
inline constexpr const char* kDeviceNameUuid = "00002a00-0000-1000-8000-00805f9b34fb";
