// The Bluetooth LE stack as the GATT wrapper needs it: a radio/discovery
// manager and one GATT client. Backends: ble/bluez (BlueZ over D-Bus) and
// ble/virtual (an in-process sensor). Results are 32-bit codes, 0 = success.
#pragma once

#include <chrono>
#include <cstdint>
#include <string>
#include <vector>

#include "ble/gatt_uuid.h"

using BleResult = int32_t;

enum : BleResult {
    BLE_OK = 0,
    BLE_ERR_NOT_OPEN = 0x00051001,       // manager closed, or the platform service is absent
    BLE_ERR_NO_RADIO = 0x00051002,       // no such radio
    BLE_ERR_RADIO_OFF = 0x00051003,      // radio present but not usable
    BLE_ERR_BUSY = 0x00051004,           // an operation of this kind is already under way
    BLE_ERR_NOT_FOUND = 0x00051005,      // unknown device, service or characteristic
    BLE_ERR_NOT_CONNECTED = 0x00051006,  // the GATT client has no link
    BLE_ERR_TIMEOUT = 0x00051007,
    BLE_ERR_FAILED = 0x00051008,         // the platform refused the call
    BLE_ERR_NOT_SUPPORTED = 0x00051009,  // e.g. notifications on a characteristic that has none
    BLE_ERR_AUTH = 0x0005100A,           // pairing failed or was rejected
    BLE_ERR_LINK_LOST = 0x0005100B,      // disconnect reason: the peer went away
    BLE_ERR_LOCAL_CLOSE = 0x0005100C,    // disconnect reason: this side asked
};

enum class BleDeviceType { Unknown, Classic, Le };

// Pairing requests that need no key from us: an authorisation to grant, or a
// key the peer wants shown.
enum class BlePairingNotice { Authorization, ServiceAuthorization, PasskeyShown, PinShown };

// A radio of the stack; owned by the stack and valid for its whole life.
class BleRadio {
public:
    virtual ~BleRadio() = default;
};

struct BleGattService {
    GattUuid uuid;
    uint16_t handle = 0;
};

struct BleGattCharacteristic {
    GattUuid uuid;
    uint16_t serviceHandle = 0;
    uint16_t handle = 0;
    bool canRead = false;
    bool canWrite = false;
    bool canWriteWithoutResponse = false;
    bool canNotify = false;
    bool canIndicate = false;
};

// Stack events. They arrive on the stack's own event thread, one at a time.
class BleStackEvents {
public:
    virtual ~BleStackEvents() = default;

    virtual void OnDiscoveringStarted(BleRadio* radio) = 0;
    virtual void OnDeviceFound(BleRadio* radio, uint64_t address) = 0;
    virtual void OnDiscoveringCompleted(BleRadio* radio, BleResult result) = 0;
    // Pairing on behalf of the device at `address`: the handler fills in the
    // answer and returns true, or returns false to refuse the request.
    virtual bool OnNumericComparison(BleRadio* radio, uint64_t address, uint32_t number) = 0;
    virtual bool OnPasskeyRequest(BleRadio* radio, uint64_t address, uint32_t& passkey) = 0;
    virtual bool OnPinRequest(BleRadio* radio, uint64_t address, std::string& pin) = 0;
    virtual bool OnPairingNotice(BleRadio* radio, uint64_t address, BlePairingNotice notice) = 0;
    virtual void OnGattConnect(BleResult result) = 0;
    virtual void OnGattDisconnect(BleResult reason) = 0;
    virtual void OnCharacteristicChanged(uint16_t handle, const uint8_t* data, uint32_t size) = 0;
};

class BleStack {
public:
    virtual ~BleStack() = default;

    // Hooks (or, with null, unhooks) the event handler. Once it returns with
    // null no handler runs any more. Never call it from inside a handler.
    virtual void SetEvents(BleStackEvents* events) = 0;

    // Manager. IsOpen may retry an open that failed because the platform was
    // not there yet; it is polled once per supervision tick.
    virtual BleResult Open() = 0;
    virtual BleResult Close() = 0;
    virtual bool IsOpen() = 0;

    // Radios.
    virtual int RadioCount() = 0;
    virtual BleRadio* GetRadioByIndex(int index) = 0;
    virtual bool IsRadioUsable(BleRadio* radio) = 0;

    // LE discovery for `limit`; events: started, found (once per device), completed.
    virtual BleResult Discover(BleRadio* radio, std::chrono::milliseconds limit) = 0;
    virtual BleResult GetRemoteName(BleRadio* radio, uint64_t address, std::string& name) = 0;
    virtual BleResult GetRemoteDeviceType(BleRadio* radio, uint64_t address,
                                          BleDeviceType& type) = 0;

    // GATT client (one link). Connect reports through OnGattConnect.
    virtual void GattSetAddress(uint64_t address) = 0;
    virtual BleResult GattConnect(BleRadio* radio) = 0;
    virtual BleResult GattGetState(bool& connected) = 0;
    virtual BleResult GattDisconnect() = 0;
    virtual BleResult GattReadServices(std::vector<BleGattService>& services) = 0;
    virtual BleResult GattReadCharacteristics(const BleGattService& service,
                                              std::vector<BleGattCharacteristic>& list) = 0;
    virtual BleResult GattWriteClientConfiguration(const BleGattCharacteristic& characteristic,
                                                   bool subscribe) = 0;
    virtual BleResult GattSubscribe(const BleGattCharacteristic& characteristic) = 0;
    virtual BleResult GattUnsubscribe(const BleGattCharacteristic& characteristic) = 0;
    virtual BleResult GattWriteValue(const BleGattCharacteristic& characteristic,
                                     const std::vector<uint8_t>& value) = 0;
};
