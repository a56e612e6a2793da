// An in-process Bluetooth stack: one radio, peripherals that a test (or the
// demo mode) places in range, and a GATT client that talks to them. Events
// arrive on the stack's own event thread, as from a real stack.
#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "ble/ble_event_sink.h"
#include "ble/ble_stack.h"
#include "ble/timer_queue.h"
#include "ble/virtual/virtual_sensor.h"

struct VirtualCharacteristic {
    GattUuid uuid;
    bool write = false;
    bool writeWithoutResponse = false;
    bool notify = false;
};

struct VirtualService {
    GattUuid uuid;
    std::vector<VirtualCharacteristic> characteristics;
};

// The sensor's GATT layout: the generic access service, then the serial-like
// service with its write and notify characteristics.
std::vector<VirtualService> SensorGattLayout();

struct VirtualPeripheral {
    uint64_t address = 0;
    std::string name;
    BleDeviceType type = BleDeviceType::Le;
    std::vector<VirtualService> services = SensorGattLayout();
    // Behind the write and notify characteristics; null for a mute device.
    std::shared_ptr<VirtualSensor> sensor;
    bool inRange = true;  // for peripherals without a sensor
};

// Faults a test injects; each count is used up one failure at a time.
struct VirtualStackFaults {
    int radioCount = 1;
    bool radioUsable = true;
    int failDiscoveryStarts = 0;
    int failConnectCalls = 0;
    int failConnectEvents = 0;  // the connect event reports an error
    int failClientConfigurations = 0;
    int failSubscribes = 0;
    int failWrites = 0;
};

struct VirtualStackTiming {
    std::chrono::milliseconds connect{20};  // connect call to connect event
    std::chrono::milliseconds foundGap{2};  // between two devices found
    // How often a scan hears the advertisements of a device that came into
    // range after it started (a sensor advertises several times a second).
    std::chrono::milliseconds advertInterval{100};
};

class VirtualStack final : public BleStack, private VirtualSensorHost {
public:
    explicit VirtualStack(VirtualStackTiming timing = {});
    ~VirtualStack() override;

    // World and faults (any thread).
    void AddPeripheral(const VirtualPeripheral& peripheral);
    void SetFaults(const VirtualStackFaults& faults);
    // Link loss of the connected peripheral.
    void DropLink();
    // Pairing requests as the peer would raise them; false when refused or unanswered.
    bool AskPasskey(uint32_t& passkey);
    bool AskPin(std::string& pin);
    bool AskConfirmation(uint32_t number, bool& confirm);

    // What happened.
    int DiscoveryCount() const;
    std::vector<uint64_t> ConnectAttempts() const;  // addresses, in order
    int DisconnectCount() const;
    int UnsubscribeCount() const;
    int OpenPolls() const;  // IsOpen calls: one per supervision tick

    // BleStack
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
    class Radio final : public BleRadio {};
    enum class Link { Idle, Connecting, Connected };
    struct Attribute {  // a characteristic with the handles the client sees
        VirtualCharacteristic definition;
        uint16_t serviceHandle = 0;
        uint16_t handle = 0;
        bool configured = false;
        bool subscribed = false;
    };

    void SensorNotify(const SensorFrame& frame) override;
    void SensorLinkDropped() override;

    bool InRange(const VirtualPeripheral& peripheral) const;

    // Reports devices that came into range during the scan, until `end`.

    void ListenForAdverts(std::chrono::steady_clock::time_point end);
    uint64_t TargetAddress() const;
    VirtualPeripheral* FindPeripheral(uint64_t address);
    Attribute* FindAttribute(uint16_t handle);
    BleResult CheckAttribute(const BleGattCharacteristic& characteristic, Attribute*& attribute);
    // CheckAttribute for a notifiable one; uses up one of `failures` if any.
    BleResult CheckNotifiable(const BleGattCharacteristic& characteristic, Attribute*& attribute,
                              int& failures);
    void EndLink(BleResult reason, bool notify);
    void CompleteConnect(uint64_t address, uint64_t attempt);
    template <typename Answer, typename Ask>
    bool AskPeer(Answer& answer, Ask ask);

    const VirtualStackTiming timing_;
    Radio radio_;
    BleEventSink sink_;

    mutable std::mutex mutex_;  // guards everything below
    VirtualStackFaults faults_;
    std::vector<VirtualPeripheral> peripherals_;
    bool open_ = false;
    bool discovering_ = false;
    std::vector<uint64_t> reported_;  // devices this scan has reported
    uint64_t targetAddress_ = 0;
    Link link_ = Link::Idle;
    uint64_t linkAttempt_ = 0;  // tells a stale connect completion from the current one
    uint64_t connectedAddress_ = 0;
    std::vector<BleGattService> services_;
    std::vector<Attribute> attributes_;
    std::shared_ptr<VirtualSensor> attachedSensor_;
    int discoveries_ = 0;
    std::vector<uint64_t> connectAttempts_;
    int disconnects_ = 0;
    int unsubscribes_ = 0;
    int openPolls_ = 0;

    TimerQueue events_;  // the stack's event thread
};

// A stack holding the given peripherals.
std::unique_ptr<VirtualStack> MakeVirtualStack(const std::vector<VirtualPeripheral>& peripherals,
                                               VirtualStackTiming timing = {});
// The demo mode's stack: one sensor named "orvane-demo" that swings on its own.
std::unique_ptr<BleStack> MakeDemoStack();
