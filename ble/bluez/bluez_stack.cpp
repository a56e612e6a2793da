#include "ble/bluez/bluez_stack.h"

#include <future>

#include "ble/bluez/adapter1.h"
#include "ble/bluez/agent_manager1.h"
#include "ble/bluez/bluez_names.h"
#include "ble/bluez/make_bluez_stack.h"
#include "common/debug_log.h"

namespace bluez {

BluezStack::BluezStack(const BluezTiming& timing)
    : timing_(timing),
      gatt_(BluezContext{tree_, sink_, dispatcher_, [this] { return CurrentBus(); }, timing}) {}

BluezStack::~BluezStack() {
    Close();
    dispatcher_.Stop();
}

void BluezStack::SetEvents(BleStackEvents* events) {
    sink_.Set(events);
}

BleResult BluezStack::Open() {
    std::lock_guard open(openMutex_);
    {
        std::lock_guard lock(mutex_);
        wanted_ = true;
    }
    return Attach();
}

bool BluezStack::IsOpen() {
    std::lock_guard open(openMutex_);
    return Attach() == BLE_OK;
}

BleResult BluezStack::Close() {
    std::lock_guard open(openMutex_);
    std::shared_ptr<BluezBus> bus;
    bool discovering = false;
    std::string adapter;
    {
        std::lock_guard lock(mutex_);
        wanted_ = false;
        loaded_ = false;
        bus = std::move(bus_);
        discovering = discovering_;
        discovering_ = false;
        ++discoveryGeneration_;
        adapter = discoveryAdapter_;
        availability_ = Availability::Unknown;
    }
    gatt_.Close();
    if (bus && discovering) {
        Adapter1(bus->connection(), adapter, timing_.call).StopDiscovery();
    }
    bus.reset();  // ends the bus thread: nothing new reaches the event thread
    dispatcher_.CancelAll();
    tree_.Clear();
    return BLE_OK;
}

// The open steps, each retried on the next open test until it succeeds:
// the bus, bluetoothd on it, its objects and our agent, a usable adapter.
BleResult BluezStack::Attach() {
    std::shared_ptr<BluezBus> bus;
    std::shared_ptr<BluezBus> dead;  // let go outside the lock: it joins its thread
    bool loaded = false;
    {
        std::lock_guard lock(mutex_);
        if (!wanted_) {
            return BLE_ERR_NOT_OPEN;
        }
        if (bus_ && !bus_->Alive()) {
            dead = std::move(bus_);
            loaded_ = false;
        }
        bus = bus_;
        loaded = loaded_;
    }
    dead.reset();
    if (!bus) {
        std::string error;
        bus = BluezBus::Connect(
            [this](BusEvent event) {
                dispatcher_.Post([this, event = std::move(event)] { OnBusEvent(event); });
            },
            [this](const Agent1::Request& request, Agent1::Reply reply) {
                dispatcher_.Post(
                    [this, request, reply = std::move(reply)] { OnAgentRequest(request, reply); });
            },
            error);
        if (!bus) {
            Note(Availability::NoBus, error);
            return BLE_ERR_NOT_OPEN;
        }
        std::lock_guard lock(mutex_);
        bus_ = bus;
        loaded_ = false;
    }
    if (!bus->ServicePresent()) {
        Note(Availability::NoService);
        return BLE_ERR_NOT_OPEN;
    }
    if (!loaded) {
        ObjectMap objects;
        if (const BleResult result = bus->GetManagedObjects(objects); result != BLE_OK) {
            return result;
        }
        // Through the event thread, in line with the signals it applies.
        std::promise<void> applied;
        dispatcher_.Post([&] {
            tree_.Reset(objects);
            applied.set_value();
        });
        applied.get_future().wait();
        AgentManager1 agents(bus->connection(), timing_.call);
        if (agents.RegisterAgent(Agent1::kPath, Agent1::kCapability) == BLE_OK) {
            agents.RequestDefaultAgent(Agent1::kPath);
        }
        std::lock_guard lock(mutex_);
        loaded_ = true;
        loadedAt_ = std::chrono::steady_clock::now();
    }
    return CheckAdapters();
}

BleResult BluezStack::CheckAdapters() {
    const auto adapters = tree_.ObjectsWith(kAdapterInterface);
    if (adapters.empty()) {
        std::chrono::steady_clock::time_point loadedAt;
        {
            std::lock_guard lock(mutex_);
            loadedAt = loadedAt_;
        }
        if (std::chrono::steady_clock::now() - loadedAt < timing_.adapterWait) {
            return BLE_ERR_NOT_OPEN;
        }
        // Open without a radio: the wrapper reports that there is none.
        Note(Availability::NoAdapter);
        return BLE_OK;
    }
    for (const auto& [path, properties] : adapters) {
        if (Adapter1::Read(properties).powered) {
            Note(Availability::Ready);
            return BLE_OK;
        }
    }
    Note(Availability::AdapterOff);
    return BLE_ERR_NOT_OPEN;
}

// One log line per change of what the open test finds.
void BluezStack::Note(Availability now, const std::string& detail) {
    {
        std::lock_guard lock(mutex_);
        if (availability_ == now) {
            return;
        }
        availability_ = now;
    }
    switch (now) {
        case Availability::NoBus:
            LOG_ERROR("createSystemBusConnection error:0x%x (%s)\n",
                      static_cast<unsigned>(BLE_ERR_NOT_OPEN), detail.c_str());
            break;
        case Availability::NoService:
            LOG_ERROR("bluetoothd is not running: no org.bluez on the system bus\n");
            break;
        case Availability::NoAdapter:
            LOG_ERROR("bluetoothd has no adapter\n");
            break;
        case Availability::AdapterOff:
            LOG_ERROR("Every Bluetooth adapter is switched off\n");
            break;
        case Availability::Ready:
            LOG_INFO("bluetoothd ready\n");
            break;
        case Availability::Unknown:
            break;
    }
}

std::shared_ptr<BluezBus> BluezStack::CurrentBus() {
    std::lock_guard lock(mutex_);
    return wanted_ && loaded_ && bus_ && bus_->Alive() ? bus_ : nullptr;
}

void BluezStack::OnAgentRequest(const Agent1::Request& request, const Agent1::Reply& reply) {
    const auto properties = tree_.Properties(request.device, kDeviceInterface);
    const Device1::State device = properties ? Device1::Read(*properties) : Device1::State{};
    BleRadio* radio = device.adapter.empty() ? nullptr : RadioFor(device.adapter);
    const uint64_t address = device.address;
    Agent1::Answer answer;
    sink_.Dispatch([&](BleStackEvents& e) {
        switch (request.kind) {
            case Agent1::Request::Kind::Passkey:
                answer.accepted = e.OnPasskeyRequest(radio, address, answer.passkey);
                break;
            case Agent1::Request::Kind::PinCode:
                answer.accepted = e.OnPinRequest(radio, address, answer.pin);
                break;
            case Agent1::Request::Kind::Confirmation:
                answer.accepted = e.OnNumericComparison(radio, address, request.number);
                break;
            case Agent1::Request::Kind::Notice:
                answer.accepted = e.OnPairingNotice(radio, address, request.notice);
                break;
        }
    });
    reply(answer);
}

void BluezStack::OnBusEvent(const BusEvent& event) {
    tree_.Apply(event);
    if (event.kind == BusEvent::Kind::ServiceGone) {
        std::lock_guard lock(mutex_);
        loaded_ = false;
    }
    const bool deviceAdded =
        event.kind == BusEvent::Kind::ObjectAdded && event.added.count(kDeviceInterface) != 0;
    // A device known from an earlier scan is not announced again: only its
    // RSSI shows that it advertises.
    const bool deviceSeen = event.kind == BusEvent::Kind::PropertiesChanged &&
                            event.interface == kDeviceInterface && event.changed.count("RSSI") != 0;
    if (deviceAdded || deviceSeen) {
        ReportIfFound(event.path);
    }
    gatt_.OnBusEvent(event);
}

void BluezStack::ReportIfFound(const std::string& devicePath) {
    std::string adapter;
    {
        std::lock_guard lock(mutex_);
        if (!discovering_) {
            return;
        }
        adapter = discoveryAdapter_;
    }
    const auto properties = tree_.Properties(devicePath, kDeviceInterface);
    if (!properties) {
        return;
    }
    const Device1::State device = Device1::Read(*properties);
    if (device.adapter != adapter || device.address == 0) {
        return;
    }
    {
        std::lock_guard lock(mutex_);
        if (!reported_.insert(device.address).second) {
            return;  // once per discovery
        }
    }
    BleRadio* radio = RadioFor(adapter);
    sink_.Dispatch([&](BleStackEvents& e) { e.OnDeviceFound(radio, device.address); });
}

// Devices bluetoothd already holds are found without a word from it: one
// still connected (after our crash; a connected sensor stops advertising)
// and one seen by another client's discovery, whose RSSI stays put and is
// re-announced only when it moves by 8 dBm.
void BluezStack::ReportHeldDevices() {
    for (const auto& [path, properties] : tree_.ObjectsWith(kDeviceInterface)) {
        const Device1::State device = Device1::Read(properties);
        if (device.connected || device.hasRssi) {
            ReportIfFound(path);
        }
    }
}

BluezStack::Radio* BluezStack::RadioFor(const std::string& adapterPath) {
    std::lock_guard lock(mutex_);
    std::unique_ptr<Radio>& radio = radios_[adapterPath];
    if (!radio) {
        radio = std::make_unique<Radio>(adapterPath);
    }
    return radio.get();
}

std::vector<std::string> BluezStack::AdapterPaths() const {
    std::vector<std::string> paths;
    for (const auto& [path, properties] : tree_.ObjectsWith(kAdapterInterface)) {
        paths.push_back(path);
    }
    return paths;
}

int BluezStack::RadioCount() {
    return static_cast<int>(AdapterPaths().size());
}

BleRadio* BluezStack::GetRadioByIndex(int index) {
    const std::vector<std::string> paths = AdapterPaths();
    if (index < 0 || index >= static_cast<int>(paths.size())) {
        return nullptr;
    }
    return RadioFor(paths[static_cast<size_t>(index)]);
}

bool BluezStack::IsRadioUsable(BleRadio* radio) {
    if (radio == nullptr) {
        return false;
    }
    const auto properties = tree_.Properties(static_cast<Radio*>(radio)->path, kAdapterInterface);
    return properties && Adapter1::Read(*properties).powered;
}

BleResult BluezStack::Discover(BleRadio* radio, std::chrono::milliseconds limit) {
    std::shared_ptr<BluezBus> bus = CurrentBus();
    if (!bus) {
        return BLE_ERR_NOT_OPEN;
    }
    if (radio == nullptr) {
        return BLE_ERR_NO_RADIO;
    }
    const std::string path = static_cast<Radio*>(radio)->path;
    const auto properties = tree_.Properties(path, kAdapterInterface);
    if (!properties) {
        return BLE_ERR_NO_RADIO;
    }
    if (!Adapter1::Read(*properties).powered) {
        return BLE_ERR_RADIO_OFF;
    }
    {
        std::lock_guard lock(mutex_);
        if (discovering_) {
            return BLE_ERR_BUSY;
        }
    }
    Adapter1 adapter(bus->connection(), path, timing_.call);
    if (const BleResult result = adapter.SetLeDiscoveryFilter(); result != BLE_OK) {
        return result;
    }
    if (const BleResult result = adapter.StartDiscovery(); result != BLE_OK) {
        return result;
    }
    uint64_t generation = 0;
    {
        std::lock_guard lock(mutex_);
        discovering_ = true;
        discoveryAdapter_ = path;
        reported_.clear();
        generation = ++discoveryGeneration_;
    }
    dispatcher_.Post([this, radio] {
        sink_.Dispatch([radio](BleStackEvents& e) { e.OnDiscoveringStarted(radio); });
        ReportHeldDevices();
    });
    dispatcher_.PostAfter(limit, [this, generation] { FinishDiscovery(generation); });
    return BLE_OK;
}

void BluezStack::FinishDiscovery(uint64_t generation) {
    std::string path;
    {
        std::lock_guard lock(mutex_);
        if (generation != discoveryGeneration_ || !discovering_) {
            return;
        }
        discovering_ = false;
        path = discoveryAdapter_;
    }
    if (std::shared_ptr<BluezBus> bus = CurrentBus()) {
        Adapter1(bus->connection(), path, timing_.call).StopDiscovery();
    }
    BleRadio* radio = RadioFor(path);
    sink_.Dispatch([radio](BleStackEvents& e) { e.OnDiscoveringCompleted(radio, BLE_OK); });
}

bool BluezStack::FindDevice(BleRadio* radio, uint64_t address, Device1::State& device) const {
    if (radio == nullptr) {
        return false;
    }
    const std::string& adapter = static_cast<Radio*>(radio)->path;
    for (const auto& [path, properties] : tree_.ObjectsWith(kDeviceInterface)) {
        device = Device1::Read(properties);
        if (device.address == address && device.adapter == adapter) {
            return true;
        }
    }
    return false;
}

BleResult BluezStack::GetRemoteName(BleRadio* radio, uint64_t address, std::string& name) {
    Device1::State device;
    if (!FindDevice(radio, address, device)) {
        return BLE_ERR_NOT_FOUND;
    }
    name = device.name;
    return BLE_OK;
}

BleResult BluezStack::GetRemoteDeviceType(BleRadio* radio, uint64_t address, BleDeviceType& type) {
    Device1::State device;
    if (!FindDevice(radio, address, device)) {
        return BLE_ERR_NOT_FOUND;
    }
    // LE-only peripherals carry no Class of Device.
    type = device.classic ? BleDeviceType::Classic : BleDeviceType::Le;
    return BLE_OK;
}

void BluezStack::GattSetAddress(uint64_t address) {
    gatt_.SetAddress(address);
}

BleResult BluezStack::GattConnect(BleRadio* radio) {
    if (radio == nullptr) {
        return BLE_ERR_NO_RADIO;
    }
    return gatt_.Connect(static_cast<Radio*>(radio)->path);
}

BleResult BluezStack::GattGetState(bool& connected) {
    return gatt_.GetState(connected);
}

BleResult BluezStack::GattDisconnect() {
    return gatt_.Disconnect();
}

BleResult BluezStack::GattReadServices(std::vector<BleGattService>& services) {
    return gatt_.ReadServices(services);
}

BleResult BluezStack::GattReadCharacteristics(const BleGattService& service,
                                              std::vector<BleGattCharacteristic>& list) {
    return gatt_.ReadCharacteristics(service, list);
}

BleResult BluezStack::GattWriteClientConfiguration(const BleGattCharacteristic& characteristic,
                                                   bool subscribe) {
    return gatt_.WriteClientConfiguration(characteristic, subscribe);
}

BleResult BluezStack::GattSubscribe(const BleGattCharacteristic& characteristic) {
    return gatt_.Subscribe(characteristic);
}

BleResult BluezStack::GattUnsubscribe(const BleGattCharacteristic& characteristic) {
    return gatt_.Unsubscribe(characteristic);
}

BleResult BluezStack::GattWriteValue(const BleGattCharacteristic& characteristic,
                                     const std::vector<uint8_t>& value) {
    return gatt_.WriteValue(characteristic, value);
}

}  // namespace bluez

std::unique_ptr<BleStack> MakeBluezStack(const BluezTiming& timing) {
    return std::make_unique<bluez::BluezStack>(timing);
}
