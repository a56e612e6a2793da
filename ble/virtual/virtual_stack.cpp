#include "ble/virtual/virtual_stack.h"

#include <algorithm>
#include <future>

#include "ble/virtual/sensor_gatt_ids.h"

namespace {

constexpr uint64_t kDemoSensorAddress = 0xC0DE5E450001;

}  // namespace

std::vector<VirtualService> SensorGattLayout() {
    return {
        {GattUuid::Parse(kGenericAccessUuid), {{GattUuid::Parse(kDeviceNameUuid)}}},
        {GattUuid::Parse(kSensorServiceUuid),
         {{GattUuid::Parse(kSensorWriteUuid), true, true, false},
          {GattUuid::Parse(kSensorNotifyUuid), false, false, true}}},
    };
}

VirtualStack::VirtualStack(VirtualStackTiming timing) : timing_(timing) {}

VirtualStack::~VirtualStack() {
    events_.Stop();
    EndLink(BLE_ERR_LOCAL_CLOSE, false);
}

void VirtualStack::AddPeripheral(const VirtualPeripheral& peripheral) {
    std::lock_guard lock(mutex_);
    peripherals_.push_back(peripheral);
}

void VirtualStack::SetFaults(const VirtualStackFaults& faults) {
    std::lock_guard lock(mutex_);
    faults_ = faults;
}

void VirtualStack::DropLink() {
    EndLink(BLE_ERR_LINK_LOST, true);
}

int VirtualStack::DiscoveryCount() const {
    std::lock_guard lock(mutex_);
    return discoveries_;
}

std::vector<uint64_t> VirtualStack::ConnectAttempts() const {
    std::lock_guard lock(mutex_);
    return connectAttempts_;
}

int VirtualStack::DisconnectCount() const {
    std::lock_guard lock(mutex_);
    return disconnects_;
}

int VirtualStack::UnsubscribeCount() const {
    std::lock_guard lock(mutex_);
    return unsubscribes_;
}

int VirtualStack::OpenPolls() const {
    std::lock_guard lock(mutex_);
    return openPolls_;
}

void VirtualStack::SetEvents(BleStackEvents* events) {
    sink_.Set(events);
}

BleResult VirtualStack::Open() {
    std::lock_guard lock(mutex_);
    open_ = true;
    return BLE_OK;
}

BleResult VirtualStack::Close() {
    {
        std::lock_guard lock(mutex_);
        open_ = false;
        discovering_ = false;
    }
    EndLink(BLE_ERR_LOCAL_CLOSE, false);
    events_.CancelAll();
    return BLE_OK;
}

bool VirtualStack::IsOpen() {
    std::lock_guard lock(mutex_);
    ++openPolls_;
    return open_;
}

int VirtualStack::RadioCount() {
    std::lock_guard lock(mutex_);
    return open_ ? faults_.radioCount : 0;
}

BleRadio* VirtualStack::GetRadioByIndex(int index) {
    std::lock_guard lock(mutex_);
    return index >= 0 && index < faults_.radioCount ? &radio_ : nullptr;
}

bool VirtualStack::IsRadioUsable(BleRadio* radio) {
    std::lock_guard lock(mutex_);
    return radio == &radio_ && faults_.radioUsable;
}

bool VirtualStack::InRange(const VirtualPeripheral& peripheral) const {
    return peripheral.sensor ? peripheral.sensor->InRange() : peripheral.inRange;
}

VirtualPeripheral* VirtualStack::FindPeripheral(uint64_t address) {
    for (VirtualPeripheral& peripheral : peripherals_) {
        if (peripheral.address == address) {
            return &peripheral;
        }
    }
    return nullptr;
}

BleResult VirtualStack::Discover(BleRadio* radio, std::chrono::milliseconds limit) {
    std::vector<uint64_t> inRange;
    {
        std::lock_guard lock(mutex_);
        if (!open_) {
            return BLE_ERR_NOT_OPEN;
        }
        if (radio != &radio_ || faults_.radioCount == 0) {
            return BLE_ERR_NO_RADIO;
        }
        if (!faults_.radioUsable) {
            return BLE_ERR_RADIO_OFF;
        }
        if (discovering_) {
            return BLE_ERR_BUSY;
        }
        if (faults_.failDiscoveryStarts > 0) {
            --faults_.failDiscoveryStarts;
            return BLE_ERR_FAILED;
        }
        discovering_ = true;
        ++discoveries_;
        for (const VirtualPeripheral& peripheral : peripherals_) {
            if (InRange(peripheral)) {
                inRange.push_back(peripheral.address);
            }
        }
        reported_ = inRange;
    }
    events_.Post(
        [this] { sink_.Dispatch([this](BleStackEvents& e) { e.OnDiscoveringStarted(&radio_); }); });
    for (size_t i = 0; i < inRange.size(); ++i) {
        const uint64_t address = inRange[i];
        events_.PostAfter(timing_.foundGap * static_cast<int>(i + 1), [this, address] {
            sink_.Dispatch(
                [this, address](BleStackEvents& e) { e.OnDeviceFound(&radio_, address); });
        });
    }
    const auto end = std::max(limit, timing_.foundGap * static_cast<int>(inRange.size() + 1));
    const auto scanEnd = std::chrono::steady_clock::now() + end;
    events_.PostAfter(timing_.advertInterval, [this, scanEnd] { ListenForAdverts(scanEnd); });
    events_.PostAfter(end, [this] {
        {
            std::lock_guard lock(mutex_);
            discovering_ = false;
        }
        sink_.Dispatch([this](BleStackEvents& e) { e.OnDiscoveringCompleted(&radio_, BLE_OK); });
    });
    return BLE_OK;
}

void VirtualStack::ListenForAdverts(std::chrono::steady_clock::time_point end) {
    std::vector<uint64_t> heard;
    {
        std::lock_guard lock(mutex_);
        if (!discovering_ || std::chrono::steady_clock::now() + timing_.advertInterval >= end) {
            return;
        }
        for (const VirtualPeripheral& peripheral : peripherals_) {
            if (InRange(peripheral) && std::find(reported_.begin(), reported_.end(),
                                                 peripheral.address) == reported_.end()) {
                reported_.push_back(peripheral.address);
                heard.push_back(peripheral.address);
            }
        }
    }
    for (const uint64_t address : heard) {
        sink_.Dispatch([this, address](BleStackEvents& e) { e.OnDeviceFound(&radio_, address); });
    }
    events_.PostAfter(timing_.advertInterval, [this, end] { ListenForAdverts(end); });
}

BleResult VirtualStack::GetRemoteName(BleRadio* /*radio*/, uint64_t address, std::string& name) {
    std::lock_guard lock(mutex_);
    const VirtualPeripheral* peripheral = FindPeripheral(address);
    if (peripheral == nullptr) {
        return BLE_ERR_NOT_FOUND;
    }
    name = peripheral->name;
    return BLE_OK;
}

BleResult VirtualStack::GetRemoteDeviceType(BleRadio* /*radio*/, uint64_t address,
                                            BleDeviceType& type) {
    std::lock_guard lock(mutex_);
    const VirtualPeripheral* peripheral = FindPeripheral(address);
    if (peripheral == nullptr) {
        return BLE_ERR_NOT_FOUND;
    }
    type = peripheral->type;
    return BLE_OK;
}

void VirtualStack::GattSetAddress(uint64_t address) {
    std::lock_guard lock(mutex_);
    targetAddress_ = address;
}

BleResult VirtualStack::GattConnect(BleRadio* radio) {
    uint64_t address = 0;
    uint64_t attempt = 0;
    bool failEvent = false;
    {
        std::lock_guard lock(mutex_);
        if (!open_) {
            return BLE_ERR_NOT_OPEN;
        }
        if (radio != &radio_) {
            return BLE_ERR_NO_RADIO;
        }
        if (link_ != Link::Idle) {
            return BLE_ERR_BUSY;
        }
        connectAttempts_.push_back(targetAddress_);
        if (faults_.failConnectCalls > 0) {
            --faults_.failConnectCalls;
            return BLE_ERR_FAILED;
        }
        if (faults_.failConnectEvents > 0) {
            --faults_.failConnectEvents;
            failEvent = true;
        }
        link_ = Link::Connecting;
        attempt = ++linkAttempt_;
        address = targetAddress_;
    }
    events_.PostAfter(timing_.connect, [this, address, attempt, failEvent] {
        if (failEvent) {
            {
                std::lock_guard lock(mutex_);
                if (link_ == Link::Connecting && linkAttempt_ == attempt) {
                    link_ = Link::Idle;
                }
            }
            sink_.Dispatch([](BleStackEvents& e) { e.OnGattConnect(BLE_ERR_FAILED); });
            return;
        }
        CompleteConnect(address, attempt);
    });
    return BLE_OK;
}

void VirtualStack::CompleteConnect(uint64_t address, uint64_t attempt) {
    std::shared_ptr<VirtualSensor> sensor;
    bool reachable = true;
    {
        std::lock_guard lock(mutex_);
        if (link_ != Link::Connecting || linkAttempt_ != attempt) {
            return;  // closed meanwhile
        }
        VirtualPeripheral* peripheral = FindPeripheral(address);
        if (peripheral == nullptr || !InRange(*peripheral)) {
            link_ = Link::Idle;
            reachable = false;
        } else {
            link_ = Link::Connected;
            connectedAddress_ = address;
            services_.clear();
            attributes_.clear();
            uint16_t handle = 1;
            for (const VirtualService& service : peripheral->services) {
                const uint16_t serviceHandle = handle++;
                services_.push_back({service.uuid, serviceHandle});
                for (const VirtualCharacteristic& characteristic : service.characteristics) {
                    attributes_.push_back({characteristic, serviceHandle, handle++});
                }
            }
            attachedSensor_ = peripheral->sensor;
            sensor = attachedSensor_;
        }
    }
    if (!reachable) {
        sink_.Dispatch([](BleStackEvents& e) { e.OnGattConnect(BLE_ERR_TIMEOUT); });
        return;
    }
    if (sensor) {
        sensor->Attach(this);
    }
    sink_.Dispatch([](BleStackEvents& e) { e.OnGattConnect(BLE_OK); });
}

BleResult VirtualStack::GattGetState(bool& connected) {
    std::lock_guard lock(mutex_);
    connected = link_ == Link::Connected;
    return BLE_OK;
}

void VirtualStack::EndLink(BleResult reason, bool notify) {
    std::shared_ptr<VirtualSensor> sensor;
    {
        std::lock_guard lock(mutex_);
        if (link_ == Link::Idle) {
            return;
        }
        const bool wasConnected = link_ == Link::Connected;
        link_ = Link::Idle;
        ++linkAttempt_;
        attributes_.clear();
        services_.clear();
        sensor = std::move(attachedSensor_);
        if (wasConnected) {
            ++disconnects_;
        }
        notify = notify && wasConnected;
    }
    if (sensor) {
        sensor->Detach();
    }
    if (notify) {
        events_.Post([this, reason] {
            sink_.Dispatch([reason](BleStackEvents& e) { e.OnGattDisconnect(reason); });
        });
    }
}

BleResult VirtualStack::GattDisconnect() {
    {
        std::lock_guard lock(mutex_);
        if (link_ != Link::Connected) {
            return BLE_ERR_NOT_CONNECTED;
        }
    }
    EndLink(BLE_ERR_LOCAL_CLOSE, true);
    return BLE_OK;
}

BleResult VirtualStack::GattReadServices(std::vector<BleGattService>& services) {
    std::lock_guard lock(mutex_);
    if (link_ != Link::Connected) {
        return BLE_ERR_NOT_CONNECTED;
    }
    services = services_;
    return BLE_OK;
}

BleResult VirtualStack::GattReadCharacteristics(const BleGattService& service,
                                                std::vector<BleGattCharacteristic>& list) {
    std::lock_guard lock(mutex_);
    if (link_ != Link::Connected) {
        return BLE_ERR_NOT_CONNECTED;
    }
    list.clear();
    for (const Attribute& attribute : attributes_) {
        if (attribute.serviceHandle != service.handle) {
            continue;
        }
        BleGattCharacteristic characteristic;
        characteristic.uuid = attribute.definition.uuid;
        characteristic.serviceHandle = attribute.serviceHandle;
        characteristic.handle = attribute.handle;
        characteristic.canWrite = attribute.definition.write;
        characteristic.canWriteWithoutResponse = attribute.definition.writeWithoutResponse;
        characteristic.canNotify = attribute.definition.notify;
        list.push_back(characteristic);
    }
    return BLE_OK;
}

VirtualStack::Attribute* VirtualStack::FindAttribute(uint16_t handle) {
    for (Attribute& attribute : attributes_) {
        if (attribute.handle == handle) {
            return &attribute;
        }
    }
    return nullptr;
}

BleResult VirtualStack::CheckAttribute(const BleGattCharacteristic& characteristic,
                                       Attribute*& attribute) {
    if (link_ != Link::Connected) {
        return BLE_ERR_NOT_CONNECTED;
    }
    attribute = FindAttribute(characteristic.handle);
    return attribute == nullptr ? BLE_ERR_NOT_FOUND : BLE_OK;
}

BleResult VirtualStack::CheckNotifiable(const BleGattCharacteristic& characteristic,
                                        Attribute*& attribute, int& failures) {
    if (const BleResult result = CheckAttribute(characteristic, attribute); result != BLE_OK) {
        return result;
    }
    if (!attribute->definition.notify) {
        return BLE_ERR_NOT_SUPPORTED;
    }
    if (failures > 0) {
        --failures;
        return BLE_ERR_FAILED;
    }
    return BLE_OK;
}

BleResult VirtualStack::GattWriteClientConfiguration(const BleGattCharacteristic& characteristic,
                                                     bool subscribe) {
    std::lock_guard lock(mutex_);
    Attribute* attribute = nullptr;
    const BleResult result =
        CheckNotifiable(characteristic, attribute, faults_.failClientConfigurations);
    if (result == BLE_OK) {
        attribute->configured = subscribe;
    }
    return result;
}

BleResult VirtualStack::GattSubscribe(const BleGattCharacteristic& characteristic) {
    std::lock_guard lock(mutex_);
    Attribute* attribute = nullptr;
    const BleResult result = CheckNotifiable(characteristic, attribute, faults_.failSubscribes);
    if (result == BLE_OK) {
        attribute->subscribed = true;
    }
    return result;
}

BleResult VirtualStack::GattUnsubscribe(const BleGattCharacteristic& characteristic) {
    std::lock_guard lock(mutex_);
    Attribute* attribute = nullptr;
    if (const BleResult result = CheckAttribute(characteristic, attribute); result != BLE_OK) {
        return result;
    }
    attribute->subscribed = false;
    attribute->configured = false;
    ++unsubscribes_;
    return BLE_OK;
}

BleResult VirtualStack::GattWriteValue(const BleGattCharacteristic& characteristic,
                                       const std::vector<uint8_t>& value) {
    std::shared_ptr<VirtualSensor> sensor;
    {
        std::lock_guard lock(mutex_);
        Attribute* attribute = nullptr;
        if (const BleResult result = CheckAttribute(characteristic, attribute); result != BLE_OK) {
            return result;
        }
        if (!attribute->definition.write && !attribute->definition.writeWithoutResponse) {
            return BLE_ERR_NOT_SUPPORTED;
        }
        if (faults_.failWrites > 0) {
            --faults_.failWrites;
            return BLE_ERR_FAILED;
        }
        if (attribute->definition.uuid == GattUuid::Parse(kSensorWriteUuid)) {
            sensor = attachedSensor_;
        }
    }
    if (sensor) {
        sensor->OnWrite(value.data(), value.size());
    }
    return BLE_OK;
}

void VirtualStack::SensorNotify(const SensorFrame& frame) {
    uint16_t handle = 0;
    {
        std::lock_guard lock(mutex_);
        if (link_ != Link::Connected) {
            return;
        }
        const GattUuid notifyUuid = GattUuid::Parse(kSensorNotifyUuid);
        for (const Attribute& attribute : attributes_) {
            if (attribute.definition.uuid == notifyUuid && attribute.subscribed) {
                handle = attribute.handle;
            }
        }
    }
    if (handle == 0) {
        return;
    }
    events_.Post([this, handle, frame] {
        sink_.Dispatch([&](BleStackEvents& e) {
            e.OnCharacteristicChanged(handle, frame.data(), static_cast<uint32_t>(frame.size()));
        });
    });
}

void VirtualStack::SensorLinkDropped() {
    // Called with the sensor's lock held: finish the link on the event thread.
    events_.Post([this] { EndLink(BLE_ERR_LINK_LOST, true); });
}

template <typename Answer, typename Ask>
bool VirtualStack::AskPeer(Answer& answer, Ask ask) {
    auto result = std::make_shared<std::promise<std::pair<bool, Answer>>>();
    auto future = result->get_future();
    const auto posted = events_.Post([this, result, ask, initial = answer] {
        Answer value = initial;
        bool handled = false;
        sink_.Dispatch([&](BleStackEvents& e) { handled = ask(e, value); });
        result->set_value({handled, value});
    });
    if (posted == 0) {
        return false;
    }
    const auto [handled, value] = future.get();
    answer = value;
    return handled;
}

uint64_t VirtualStack::TargetAddress() const {
    std::lock_guard lock(mutex_);
    return targetAddress_;
}

bool VirtualStack::AskPasskey(uint32_t& passkey) {
    const uint64_t address = TargetAddress();
    return AskPeer(passkey, [this, address](BleStackEvents& e, uint32_t& value) {
        return e.OnPasskeyRequest(&radio_, address, value);
    });
}

bool VirtualStack::AskPin(std::string& pin) {
    const uint64_t address = TargetAddress();
    return AskPeer(pin, [this, address](BleStackEvents& e, std::string& value) {
        return e.OnPinRequest(&radio_, address, value);
    });
}

bool VirtualStack::AskConfirmation(uint32_t number, bool& confirm) {
    const uint64_t address = TargetAddress();
    return AskPeer(confirm, [this, address, number](BleStackEvents& e, bool& value) {
        value = e.OnNumericComparison(&radio_, address, number);
        return value;
    });
}

std::unique_ptr<VirtualStack> MakeVirtualStack(const std::vector<VirtualPeripheral>& peripherals,
                                               VirtualStackTiming timing) {
    auto stack = std::make_unique<VirtualStack>(timing);
    for (const VirtualPeripheral& peripheral : peripherals) {
        stack->AddPeripheral(peripheral);
    }
    return stack;
}

std::unique_ptr<BleStack> MakeDemoStack() {
    auto sensor = std::make_shared<VirtualSensor>("orvane-demo");
    sensor->SetAutoSwing(true);
    VirtualPeripheral peripheral;
    peripheral.address = kDemoSensorAddress;
    peripheral.name = sensor->Name();
    peripheral.sensor = sensor;
    return MakeVirtualStack({peripheral});
}
