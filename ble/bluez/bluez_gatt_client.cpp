#include "ble/bluez/bluez_gatt_client.h"

#include <algorithm>

#include "ble/bluez/bluez_names.h"
#include "ble/bluez/gatt_service1.h"

namespace bluez {

namespace {

bool Contains(const std::vector<std::string>& list, const std::string& item) {
    return std::find(list.begin(), list.end(), item) != list.end();
}

}  // namespace

BluezGattClient::BluezGattClient(BluezContext context) : context_(std::move(context)) {}

void BluezGattClient::SetAddress(uint64_t address) {
    std::lock_guard lock(mutex_);
    address_ = address;
}

BleResult BluezGattClient::Connect(const std::string& adapterPath) {
    std::shared_ptr<BluezBus> bus = context_.bus();
    if (!bus) {
        return BLE_ERR_NOT_OPEN;
    }
    uint64_t address = 0;
    {
        std::lock_guard lock(mutex_);
        if (link_ != Link::Idle) {
            return BLE_ERR_BUSY;
        }
        address = address_;
    }
    std::string path;
    for (const auto& [candidate, properties] : context_.tree.ObjectsWith(kDeviceInterface)) {
        const Device1::State device = Device1::Read(properties);
        if (device.address == address && device.adapter == adapterPath) {
            path = candidate;
            break;
        }
    }
    if (path.empty()) {
        return BLE_ERR_NOT_FOUND;
    }
    auto device = std::make_shared<Device1>(bus->connection(), path, context_.timing.call);
    uint64_t attempt = 0;
    {
        std::lock_guard lock(mutex_);
        if (link_ != Link::Idle) {
            return BLE_ERR_BUSY;
        }
        link_ = Link::Connecting;
        attempt = ++attempt_;
        closing_ = false;
        devicePath_ = path;
        bus_ = bus;
        device_ = device;
        paths_.clear();
        handles_.clear();
        subscribed_.clear();
        nextHandle_ = 1;
    }
    const BleResult result =
        device->ConnectAsync(context_.timing.connect, [this, attempt](BleResult reply) {
            context_.dispatcher.Post([this, attempt, reply] { OnConnectReply(attempt, reply); });
        });
    if (result != BLE_OK) {
        std::shared_ptr<BluezBus> released;
        std::lock_guard lock(mutex_);
        if (attempt == attempt_) {
            link_ = Link::Idle;
            device_.reset();
            released = std::move(bus_);
        }
    }
    return result;
}

void BluezGattClient::OnConnectReply(uint64_t attempt, BleResult result) {
    bool resolved = false;
    {
        std::lock_guard lock(mutex_);
        if (attempt != attempt_ || link_ != Link::Connecting) {
            return;
        }
        if (result == BLE_OK) {
            const auto properties = context_.tree.Properties(devicePath_, kDeviceInterface);
            resolved = properties && Device1::Read(*properties).servicesResolved;
            link_ = resolved ? Link::Connected : Link::Resolving;
            if (!resolved) {
                resolveTimer_ = context_.dispatcher.PostAfter(
                    context_.timing.resolve, [this, attempt] { OnResolveTimeout(attempt); });
            }
        }
    }
    if (result != BLE_OK) {
        Abandon(result);
    } else if (resolved) {
        context_.sink.Dispatch([](BleStackEvents& e) { e.OnGattConnect(BLE_OK); });
    }
}

void BluezGattClient::OnResolveTimeout(uint64_t attempt) {
    {
        std::lock_guard lock(mutex_);
        if (attempt != attempt_ || link_ != Link::Resolving) {
            return;
        }
    }
    Abandon(BLE_ERR_TIMEOUT);
}

void BluezGattClient::Abandon(BleResult reason) {
    std::shared_ptr<Device1> device;
    std::shared_ptr<BluezBus> bus;
    {
        std::lock_guard lock(mutex_);
        device = device_;
        bus = bus_;
    }
    // Cancelled before the failure is told: the next attempt must not meet
    // this one still under way in bluetoothd.
    if (device) {
        device->Disconnect();
    }
    EndLink(reason);
}

void BluezGattClient::EndLink(BleResult reason) {
    Link was = Link::Idle;
    std::shared_ptr<Device1> device;
    std::shared_ptr<BluezBus> bus;
    {
        std::lock_guard lock(mutex_);
        was = link_;
        if (was == Link::Idle) {
            return;
        }
        link_ = Link::Idle;
        ++attempt_;
        context_.dispatcher.Cancel(resolveTimer_);
        device = std::move(device_);
        bus = std::move(bus_);
        subscribed_.clear();
    }
    if (was == Link::Connected) {
        context_.sink.Dispatch([reason](BleStackEvents& e) { e.OnGattDisconnect(reason); });
    } else {
        // Never reported as connected: the attempt failed.
        context_.sink.Dispatch([reason](BleStackEvents& e) { e.OnGattConnect(reason); });
    }
}

void BluezGattClient::Close() {
    Link was = Link::Idle;
    std::shared_ptr<Device1> device;
    std::shared_ptr<BluezBus> bus;
    {
        std::lock_guard lock(mutex_);
        was = link_;
        link_ = Link::Idle;
        ++attempt_;
        context_.dispatcher.Cancel(resolveTimer_);
        device = std::move(device_);
        bus = std::move(bus_);
        subscribed_.clear();
    }
    if (was != Link::Idle) {
        device->Disconnect();  // also cancels a connection still being made
    }
}

BleResult BluezGattClient::GetState(bool& connected) {
    std::lock_guard lock(mutex_);
    connected = link_ == Link::Connected || link_ == Link::Resolving;
    return BLE_OK;
}

BleResult BluezGattClient::Disconnect() {
    std::shared_ptr<Device1> device;
    std::shared_ptr<BluezBus> bus;
    {
        std::lock_guard lock(mutex_);
        if (link_ != Link::Connected && link_ != Link::Resolving) {
            return BLE_ERR_NOT_CONNECTED;
        }
        closing_ = true;
        device = device_;
        bus = bus_;
    }
    // The link ends with Connected = false, which raises the event.
    return device->Disconnect();
}

void BluezGattClient::OnBusEvent(const BusEvent& event) {
    switch (event.kind) {
        case BusEvent::Kind::PropertiesChanged:
            if (event.interface == kDeviceInterface) {
                OnDeviceChanged(event);
            } else if (event.interface == kCharacteristicInterface &&
                       event.changed.count("Value") != 0) {
                OnValueChanged(event);
            }
            break;
        case BusEvent::Kind::ObjectRemoved: {
            bool ours = false;
            {
                std::lock_guard lock(mutex_);
                ours = event.path == devicePath_ && Contains(event.removed, kDeviceInterface);
            }
            if (ours) {
                EndLink(BLE_ERR_LINK_LOST);
            }
            break;
        }
        case BusEvent::Kind::ServiceGone:
            EndLink(BLE_ERR_LINK_LOST);
            break;
        default:
            break;
    }
}

void BluezGattClient::OnDeviceChanged(const BusEvent& event) {
    BleResult lost = BLE_OK;
    {
        std::lock_guard lock(mutex_);
        if (event.path != devicePath_ || link_ == Link::Idle) {
            return;
        }
        const auto connected = event.changed.find("Connected");
        if (connected != event.changed.end() && connected->second == Value(false) &&
            link_ != Link::Connecting) {
            // While connecting, the reply to Connect carries the failure.
            lost = closing_ ? BLE_ERR_LOCAL_CLOSE : BLE_ERR_LINK_LOST;
        } else if (link_ == Link::Resolving && BoolOf(event.changed, "ServicesResolved")) {
            link_ = Link::Connected;
            context_.dispatcher.Cancel(resolveTimer_);
        } else {
            return;
        }
    }
    if (lost != BLE_OK) {
        EndLink(lost);
    } else {
        context_.sink.Dispatch([](BleStackEvents& e) { e.OnGattConnect(BLE_OK); });
    }
}

void BluezGattClient::OnValueChanged(const BusEvent& event) {
    uint16_t handle = 0;
    {
        std::lock_guard lock(mutex_);
        const auto found = handles_.find(event.path);
        if (link_ != Link::Connected || found == handles_.end() ||
            subscribed_.count(found->second) == 0) {
            return;
        }
        handle = found->second;
    }
    const std::vector<uint8_t> value = BytesOf(event.changed, "Value");
    context_.sink.Dispatch([&](BleStackEvents& e) {
        e.OnCharacteristicChanged(handle, value.data(), static_cast<uint32_t>(value.size()));
    });
}

uint16_t BluezGattClient::HandleFor(const std::string& path) {
    std::lock_guard lock(mutex_);
    const auto found = handles_.find(path);
    if (found != handles_.end()) {
        return found->second;
    }
    const uint16_t handle = nextHandle_++;
    handles_[path] = handle;
    paths_[handle] = path;
    return handle;
}

BleResult BluezGattClient::ReadServices(std::vector<BleGattService>& services) {
    std::string device;
    {
        std::lock_guard lock(mutex_);
        if (link_ != Link::Connected) {
            return BLE_ERR_NOT_CONNECTED;
        }
        device = devicePath_;
    }
    services.clear();
    for (const auto& [path, properties] : context_.tree.ObjectsWith(kServiceInterface)) {
        const GattService1::State service = GattService1::Read(properties);
        if (service.device == device) {
            services.push_back({GattUuid::Parse(service.uuid), HandleFor(path)});
        }
    }
    return BLE_OK;
}

BleResult BluezGattClient::ReadCharacteristics(const BleGattService& service,
                                               std::vector<BleGattCharacteristic>& list) {
    std::string servicePath;
    std::shared_ptr<BluezBus> bus;
    if (const BleResult result = PathOf(service.handle, servicePath, bus); result != BLE_OK) {
        return result;
    }
    list.clear();
    for (const auto& [path, properties] : context_.tree.ObjectsWith(kCharacteristicInterface)) {
        const GattCharacteristic1::State state = GattCharacteristic1::Read(properties);
        if (state.service != servicePath) {
            continue;
        }
        BleGattCharacteristic characteristic;
        characteristic.uuid = GattUuid::Parse(state.uuid);
        characteristic.serviceHandle = service.handle;
        characteristic.handle = HandleFor(path);
        characteristic.canRead = state.Has("read");
        characteristic.canWrite = state.Has("write");
        characteristic.canWriteWithoutResponse = state.Has("write-without-response");
        characteristic.canNotify = state.Has("notify");
        characteristic.canIndicate = state.Has("indicate");
        list.push_back(characteristic);
    }
    return BLE_OK;
}

BleResult BluezGattClient::PathOf(uint16_t handle, std::string& path,
                                  std::shared_ptr<BluezBus>& bus) {
    std::lock_guard lock(mutex_);
    if (link_ != Link::Connected) {
        return BLE_ERR_NOT_CONNECTED;
    }
    const auto found = paths_.find(handle);
    if (found == paths_.end()) {
        return BLE_ERR_NOT_FOUND;
    }
    path = found->second;
    bus = bus_;
    return BLE_OK;
}

BleResult BluezGattClient::Lookup(const BleGattCharacteristic& characteristic, Target& target) {
    if (const BleResult result = PathOf(characteristic.handle, target.path, target.bus);
        result != BLE_OK) {
        return result;
    }
    const auto properties = context_.tree.Properties(target.path, kCharacteristicInterface);
    if (!properties) {
        return BLE_ERR_NOT_FOUND;
    }
    target.state = GattCharacteristic1::Read(*properties);
    return BLE_OK;
}

GattCharacteristic1 BluezGattClient::ProxyOf(const Target& target) const {
    return GattCharacteristic1(target.bus->connection(), target.path, context_.timing.call);
}

BleResult BluezGattClient::LookupNotifiable(const BleGattCharacteristic& characteristic,
                                            Target& target) {
    if (const BleResult result = Lookup(characteristic, target); result != BLE_OK) {
        return result;
    }
    const bool notifiable = target.state.Has("notify") || target.state.Has("indicate");
    return notifiable ? BLE_OK : BLE_ERR_NOT_SUPPORTED;
}

BleResult BluezGattClient::WriteClientConfiguration(const BleGattCharacteristic& characteristic,
                                                    bool subscribe) {
    Target target;
    if (const BleResult result = LookupNotifiable(characteristic, target); result != BLE_OK) {
        return result;
    }
    GattCharacteristic1 proxy = ProxyOf(target);
    return subscribe ? proxy.StartNotify() : proxy.StopNotify();
}

BleResult BluezGattClient::Subscribe(const BleGattCharacteristic& characteristic) {
    Target target;
    if (const BleResult result = LookupNotifiable(characteristic, target); result != BLE_OK) {
        return result;
    }
    std::lock_guard lock(mutex_);
    subscribed_.insert(characteristic.handle);
    return BLE_OK;
}

BleResult BluezGattClient::Unsubscribe(const BleGattCharacteristic& characteristic) {
    Target target;
    if (const BleResult result = Lookup(characteristic, target); result != BLE_OK) {
        return result;
    }
    {
        std::lock_guard lock(mutex_);
        subscribed_.erase(characteristic.handle);
    }
    return ProxyOf(target).StopNotify();
}

BleResult BluezGattClient::WriteValue(const BleGattCharacteristic& characteristic,
                                      const std::vector<uint8_t>& value) {
    Target target;
    if (const BleResult result = Lookup(characteristic, target); result != BLE_OK) {
        return result;
    }
    // Without response when the characteristic allows it: the sensor's
    // frames are small and answered by notification anyway.
    std::string type;
    if (target.state.Has("write-without-response")) {
        type = "command";
    } else if (target.state.Has("write")) {
        type = "request";
    } else {
        return BLE_ERR_NOT_SUPPORTED;
    }
    return ProxyOf(target).WriteValue(value, type);
}

}  // namespace bluez
