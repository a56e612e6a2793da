// The GATT client over BlueZ: one link to one device, its services and
// characteristics under handles of our own, notifications and writes.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <vector>

#include "ble/ble_stack.h"
#include "ble/bluez/bluez_context.h"
#include "ble/bluez/device1.h"
#include "ble/bluez/gatt_characteristic1.h"

namespace bluez {

class BluezGattClient {
public:
    explicit BluezGattClient(BluezContext context);

    void SetAddress(uint64_t address);
    BleResult Connect(const std::string& adapterPath);
    BleResult GetState(bool& connected);
    BleResult Disconnect();
    BleResult ReadServices(std::vector<BleGattService>& services);
    BleResult ReadCharacteristics(const BleGattService& service,
                                  std::vector<BleGattCharacteristic>& list);
    BleResult WriteClientConfiguration(const BleGattCharacteristic& characteristic, bool subscribe);
    BleResult Subscribe(const BleGattCharacteristic& characteristic);
    BleResult Unsubscribe(const BleGattCharacteristic& characteristic);
    BleResult WriteValue(const BleGattCharacteristic& characteristic,
                         const std::vector<uint8_t>& value);

    // Event thread, after the object mirror has taken the event in.
    void OnBusEvent(const BusEvent& event);
    // The manager closes: the link goes without an event.
    void Close();

private:
    enum class Link { Idle, Connecting, Resolving, Connected };

    void OnConnectReply(uint64_t attempt, BleResult result);
    void OnResolveTimeout(uint64_t attempt);
    // An attempt that failed on our side (an error or our time limit):
    // bluetoothd may still complete it and would leave the link up with
    // nobody using it, so it is cancelled.
    void Abandon(BleResult reason);
    void OnDeviceChanged(const BusEvent& event);
    void OnValueChanged(const BusEvent& event);
    // Ends the link; the disconnect event when it was up, the connect event
    // with `reason` when it was still coming up.
    void EndLink(BleResult reason);
    uint16_t HandleFor(const std::string& path);
    // The object behind a handle on the open link, and the bus it is on.
    BleResult PathOf(uint16_t handle, std::string& path, std::shared_ptr<BluezBus>& bus);
    // The characteristic behind a handle on the open link, with the bus to
    // reach it (held for the duration of the call).
    struct Target {
        std::shared_ptr<BluezBus> bus;
        std::string path;
        GattCharacteristic1::State state;
    };
    BleResult Lookup(const BleGattCharacteristic& characteristic, Target& target);
    // The same for a characteristic that can notify or indicate.
    BleResult LookupNotifiable(const BleGattCharacteristic& characteristic, Target& target);
    GattCharacteristic1 ProxyOf(const Target& target) const;

    BluezContext context_;

    std::mutex mutex_;  // guards everything below
    uint64_t address_ = 0;
    Link link_ = Link::Idle;
    uint64_t attempt_ = 0;  // tells a stale reply or timer from the current link
    bool closing_ = false;  // we asked for the disconnect
    std::string devicePath_;
    std::shared_ptr<BluezBus> bus_;    // the bus the link runs on
    std::shared_ptr<Device1> device_;  // keeps a pending Connect alive
    TimerQueue::TimerId resolveTimer_ = 0;
    uint16_t nextHandle_ = 1;
    std::map<uint16_t, std::string> paths_;  // handle -> object path
    std::map<std::string, uint16_t> handles_;
    std::set<uint16_t> subscribed_;
};

}  // namespace bluez
