// The Bluetooth stack over BlueZ: adapters as radios, LE discovery, the GATT
// client and the pairing agent. Everything bluetoothd reports is handled on
// one event thread, which also delivers the stack events. A missing system
// bus, a missing bluetoothd and switched-off adapters are waited out: the
// manager counts as closed, and every open test tries again.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <string>

#include "ble/ble_event_sink.h"
#include "ble/ble_stack.h"
#include "ble/bluez/agent1.h"
#include "ble/bluez/bluez_bus.h"
#include "ble/bluez/bluez_gatt_client.h"
#include "ble/bluez/bluez_timing.h"
#include "ble/bluez/object_tree.h"
#include "ble/timer_queue.h"

namespace bluez {

class BluezStack final : public BleStack {
public:
    explicit BluezStack(const BluezTiming& timing);
    ~BluezStack() override;

    void SetEvents(BleStackEvents* events) override;
    BleResult Open() override;
    BleResult Close() override;
    bool IsOpen() override;
    int RadioCount() override;
    BleRadio* GetRadioByIndex(int index) override;
    bool IsRadioUsable(BleRadio* radio) override;
    BleResult Discover(BleRadio* radio, std::chrono::milliseconds limit) override;
    BleResult GetRemoteName(BleRadio* radio, uint64_t address, std::string& name) override;
    BleResult GetRemoteDeviceType(BleRadio* radio, uint64_t address, BleDeviceType& type) override;
    void GattSetAddress(uint64_t address) override;
    BleResult GattConnect(BleRadio* radio) override;
    BleResult GattGetState(bool& connected) override;
    BleResult GattDisconnect() override;
    BleResult GattReadServices(std::vector<BleGattService>& services) override;
    BleResult GattReadCharacteristics(const BleGattService& service,
                                      std::vector<BleGattCharacteristic>& list) override;
    BleResult GattWriteClientConfiguration(const BleGattCharacteristic& characteristic,
                                           bool subscribe) override;
    BleResult GattSubscribe(const BleGattCharacteristic& characteristic) override;
    BleResult GattUnsubscribe(const BleGattCharacteristic& characteristic) override;
    BleResult GattWriteValue(const BleGattCharacteristic& characteristic,
                             const std::vector<uint8_t>& value) override;

private:
    // An adapter; kept for the stack's life so found devices may point at it.
    class Radio final : public BleRadio {
    public:
        explicit Radio(std::string adapterPath) : path(std::move(adapterPath)) {}
        const std::string path;
    };
    enum class Availability { Unknown, NoBus, NoService, NoAdapter, AdapterOff, Ready };

    BleResult Attach();
    BleResult CheckAdapters();
    void Note(Availability now, const std::string& detail = {});
    std::shared_ptr<BluezBus> CurrentBus();
    // Event thread: asks the events about the device behind the request.
    void OnAgentRequest(const Agent1::Request& request, const Agent1::Reply& reply);
    void OnBusEvent(const BusEvent& event);  // event thread
    void ReportIfFound(const std::string& devicePath);
    void ReportHeldDevices();  // event thread, as a discovery starts
    void FinishDiscovery(uint64_t generation);
    Radio* RadioFor(const std::string& adapterPath);
    std::vector<std::string> AdapterPaths() const;
    bool FindDevice(BleRadio* radio, uint64_t address, Device1::State& device) const;

    const BluezTiming timing_;
    BleEventSink sink_;
    ObjectTree tree_;
    TimerQueue dispatcher_;  // the event thread

    std::mutex openMutex_;  // serialises opening, the open test and closing

    mutable std::mutex mutex_;  // guards the members below
    std::shared_ptr<BluezBus> bus_;
    bool wanted_ = false;  // between Open and Close
    bool loaded_ = false;  // objects read and agent registered on bus_
    std::chrono::steady_clock::time_point loadedAt_;
    Availability availability_ = Availability::Unknown;
    std::map<std::string, std::unique_ptr<Radio>> radios_;
    bool discovering_ = false;
    std::string discoveryAdapter_;
    std::set<uint64_t> reported_;  // found in this discovery
    uint64_t discoveryGeneration_ = 0;

    BluezGattClient gatt_;
};

}  // namespace bluez
