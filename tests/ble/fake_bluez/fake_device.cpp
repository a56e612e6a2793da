#include "tests/ble/fake_bluez/fake_device.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>

#include "ble/bluez/bluez_names.h"
#include "ble/virtual/sensor_gatt_ids.h"

namespace orv::test {

namespace {

using bluez::kCharacteristicInterface;
using bluez::kDeviceInterface;
using bluez::kServiceInterface;

// bluetoothd announces an RSSI change only from this size on.
constexpr int kRssiStep = 8;

sdbus::Error Failed(const char* message) {
    return sdbus::Error("org.bluez.Error.Failed", message);
}

bool Has(const FakeCharacteristic& characteristic, const std::string& flag) {
    return std::find(characteristic.flags.begin(), characteristic.flags.end(), flag) !=
           characteristic.flags.end();
}

std::string DevicePath(const std::string& adapterPath, std::string address) {
    std::replace(address.begin(), address.end(), ':', '_');
    return adapterPath + "/dev_" + address;
}

std::string Numbered(const std::string& parent, const char* kind, int handle) {
    char tail[24];
    std::snprintf(tail, sizeof tail, "/%s%04x", kind, handle);
    return parent + tail;
}

}  // namespace

std::vector<FakeService> SensorServices() {
    return {
        {kGenericAccessUuid, {{kDeviceNameUuid, {"read"}}}},
        {kSensorServiceUuid,
         {{kSensorWriteUuid, {"write-without-response", "write"}},
          {kSensorNotifyUuid, {"notify"}}}},
    };
}

FakeDevice::FakeDevice(FakeBus& bus, FakeDeviceConfig config, std::string adapterPath)
    : bus_(bus),
      config_(std::move(config)),
      adapterPath_(std::move(adapterPath)),
      path_(DevicePath(adapterPath_, config_.address)),
      hangsLeft_(config_.hangingConnects) {
    BuildGatt();
}

FakeDevice::~FakeDevice() {
    if (config_.sensor) {
        config_.sensor->Detach();
    }
}

void FakeDevice::BuildGatt() {
    int handle = 1;
    for (const FakeService& service : config_.services) {
        const std::string servicePath = Numbered(path_, "service", handle++);
        services_.push_back({servicePath, service, nullptr});
        for (const FakeCharacteristic& characteristic : service.characteristics) {
            auto entry = std::make_unique<Characteristic>();
            entry->path = Numbered(servicePath, "char", handle);
            entry->definition = characteristic;
            characteristics_.push_back(std::move(entry));
            handle += 2;  // declaration and value
        }
    }
}

VariantMap FakeDevice::DeviceProperties() const {
    std::vector<std::string> uuids;
    for (const FakeService& service : config_.services) {
        uuids.push_back(service.uuid);
    }
    std::string alias = config_.alias;
    if (alias.empty()) {
        alias = config_.name.value_or(config_.address);
        std::replace(alias.begin(), alias.end(), ':', '-');
    }
    VariantMap properties{
        {"Address", sdbus::Variant(config_.address)},
        {"AddressType", sdbus::Variant(std::string("random"))},
        {"Alias", sdbus::Variant(alias)},
        {"Adapter", sdbus::Variant(sdbus::ObjectPath(adapterPath_))},
        {"Paired", sdbus::Variant(paired_)},
        {"Trusted", sdbus::Variant(false)},
        {"Connected", sdbus::Variant(connected_)},
        {"ServicesResolved", sdbus::Variant(resolved_)},
        {"UUIDs", sdbus::Variant(uuids)},
    };
    if (config_.name) {
        properties["Name"] = sdbus::Variant(*config_.name);
    }
    if (rssi_) {
        properties["RSSI"] = sdbus::Variant(*rssi_);
    }
    return properties;
}

void FakeDevice::RegisterDevice() {
    object_ = sdbus::createObject(*bus_.connection, path_);
    sdbus::IObject& o = *object_;
    o.registerMethod("Connect")
        .onInterface(kDeviceInterface)
        .implementedAs([this](sdbus::Result<>&& result) {
            auto reply = std::make_shared<sdbus::Result<>>(std::move(result));
            bus_.Post([this, reply] { Connect(reply); });
        });
    o.registerMethod("Disconnect")
        .onInterface(kDeviceInterface)
        .implementedAs([this](sdbus::Result<>&& result) {
            auto reply = std::make_shared<sdbus::Result<>>(std::move(result));
            bus_.Post([this, reply] { Disconnect(reply); });
        });
    // Every property as DeviceProperties has it, read at the time of the
    // call; one that went away since keeps its last value.
    VariantMap initial;
    {
        std::lock_guard lock(bus_.mutex);
        initial = DeviceProperties();
    }
    for (const auto& [name, value] : initial) {
        const std::string key = name;
        const std::string type = value.peekValueType();
        auto current = [this, key, last = value] {
            std::lock_guard guard(bus_.mutex);
            const VariantMap properties = DeviceProperties();
            const auto found = properties.find(key);
            return found != properties.end() ? found->second : last;
        };
        auto registrar = o.registerProperty(key);
        registrar.onInterface(kDeviceInterface);
        if (type == "b") {
            registrar.withGetter([current] { return current().get<bool>(); });
        } else if (type == "o") {
            registrar.withGetter([current] { return current().get<sdbus::ObjectPath>(); });
        } else if (type == "as") {
            registrar.withGetter([current] { return current().get<std::vector<std::string>>(); });
        } else if (type == "n") {
            registrar.withGetter([current] { return current().get<int16_t>(); });
        } else {
            registrar.withGetter([current] { return current().get<std::string>(); });
        }
    }
}

void FakeDevice::Export() {
    if (Exported()) {
        return;
    }
    RegisterDevice();
    object_->finishRegistration();
    std::lock_guard lock(bus_.mutex);
    exported_ = true;
}

void FakeDevice::LinkAtStart() {
    {
        std::lock_guard lock(bus_.mutex);
        connected_ = resolved_ = true;
    }
    Export();
    ExportGatt();
    if (config_.sensor) {
        config_.sensor->Attach(this);
    }
}

void FakeDevice::Announce(int16_t rssi) {
    bool changed = false;
    bool isNew = false;
    {
        std::lock_guard lock(bus_.mutex);
        changed = !rssi_ || std::abs(*rssi_ - rssi) >= kRssiStep;
        isNew = !exported_;
        if (changed) {
            rssi_ = rssi;
        }
    }
    if (isNew) {
        Export();
        VariantMap properties;
        {
            std::lock_guard lock(bus_.mutex);
            properties = DeviceProperties();
        }
        bus_.EmitInterfacesAdded(path_, {{kDeviceInterface, properties}});
    } else if (changed) {
        FakeBus::EmitPropertiesChanged(*object_, kDeviceInterface,
                                       {{"RSSI", sdbus::Variant(rssi)}});
    }
}

void FakeDevice::ForgetRssi() {
    {
        std::lock_guard lock(bus_.mutex);
        if (!exported_ || connected_ || !rssi_) {
            return;
        }
        rssi_.reset();
    }
    FakeBus::EmitPropertiesChanged(*object_, kDeviceInterface, {}, {"RSSI"});
}

void FakeDevice::Unexport() {
    if (config_.sensor) {
        config_.sensor->Detach();
    }
    // Dropped outside the lock: unregistering takes the bus's own lock,
    // which property getters hold while they take ours.
    std::vector<std::unique_ptr<sdbus::IObject>> objects;
    {
        std::lock_guard lock(bus_.mutex);
        for (auto& characteristic : characteristics_) {
            objects.push_back(std::move(characteristic->object));
            characteristic->notifying = false;
        }
        for (Service& service : services_) {
            objects.push_back(std::move(service.object));
        }
        objects.push_back(std::move(object_));
        exported_ = gattExported_ = connected_ = resolved_ = false;
        rssi_.reset();
        hangingConnect_.reset();
    }
    objects.clear();
}

void FakeDevice::ExportGatt() {
    {
        std::lock_guard lock(bus_.mutex);
        if (gattExported_) {
            return;
        }
        gattExported_ = true;
    }
    size_t next = 0;
    for (Service& service : services_) {
        service.object = sdbus::createObject(*bus_.connection, service.path);
        const VariantMap properties{
            {"UUID", sdbus::Variant(service.definition.uuid)},
            {"Device", sdbus::Variant(sdbus::ObjectPath(path_))},
            {"Primary", sdbus::Variant(true)},
        };
        sdbus::IObject& o = *service.object;
        o.registerProperty("Primary").onInterface(kServiceInterface).withGetter([] {
            return true;
        });
        o.registerProperty("Device").onInterface(kServiceInterface).withGetter([this] {
            return sdbus::ObjectPath(path_);
        });
        o.registerProperty("UUID").onInterface(kServiceInterface).withGetter([&service] {
            return service.definition.uuid;
        });
        service.object->finishRegistration();
        bus_.EmitInterfacesAdded(service.path, {{kServiceInterface, properties}});
        for (size_t i = 0; i < service.definition.characteristics.size(); ++i, ++next) {
            RegisterCharacteristic(*characteristics_[next], service.path);
        }
    }
}

void FakeDevice::RegisterCharacteristic(Characteristic& c, const std::string& servicePath) {
    c.object = sdbus::createObject(*bus_.connection, c.path);
    sdbus::IObject& o = *c.object;
    o.registerMethod("StartNotify").onInterface(kCharacteristicInterface).implementedAs([this, &c] {
        StartNotify(c);
    });
    o.registerMethod("StopNotify").onInterface(kCharacteristicInterface).implementedAs([this, &c] {
        StopNotify(c);
    });
    o.registerMethod("WriteValue")
        .onInterface(kCharacteristicInterface)
        .implementedAs([this, &c](std::vector<uint8_t> value, VariantMap options) {
            WriteValue(c, value, options);
        });
    o.registerProperty("UUID").onInterface(kCharacteristicInterface).withGetter([&c] {
        return c.definition.uuid;
    });
    o.registerProperty("Service").onInterface(kCharacteristicInterface).withGetter([servicePath] {
        return sdbus::ObjectPath(servicePath);
    });
    o.registerProperty("Flags").onInterface(kCharacteristicInterface).withGetter([&c] {
        return c.definition.flags;
    });
    o.registerProperty("Notifying").onInterface(kCharacteristicInterface).withGetter([this, &c] {
        std::lock_guard lock(bus_.mutex);
        return c.notifying;
    });
    o.registerProperty("Value").onInterface(kCharacteristicInterface).withGetter([this, &c] {
        std::lock_guard lock(bus_.mutex);
        return c.value;
    });
    o.finishRegistration();
    bool notifying = false;
    {
        std::lock_guard lock(bus_.mutex);
        notifying = c.notifying;
    }
    bus_.EmitInterfacesAdded(c.path, {{kCharacteristicInterface,
                                       {{"UUID", sdbus::Variant(c.definition.uuid)},
                                        {"Service", sdbus::Variant(sdbus::ObjectPath(servicePath))},
                                        {"Flags", sdbus::Variant(c.definition.flags)},
                                        {"Notifying", sdbus::Variant(notifying)}}}});
}

bool FakeDevice::Pair() {
    {
        std::lock_guard lock(bus_.mutex);
        if (config_.pairing == FakePairing::None || paired_) {
            return true;
        }
    }
    // The sensor takes only its own passkey.
    const FakeBus::AgentAnswer answer = bus_.AskAgent("RequestPasskey", path_);
    const bool accepted = answer.error.empty() && answer.value == "482913";
    {
        std::lock_guard lock(bus_.mutex);
        pairingAnswer_ = answer.error.empty() ? answer.value : "refused";
        paired_ = accepted;
    }
    if (accepted) {
        FakeBus::EmitPropertiesChanged(*object_, kDeviceInterface,
                                       {{"Paired", sdbus::Variant(true)}});
    }
    return accepted;
}

// bluetoothd's order: Connected, the method reply, the GATT objects, then
// ServicesResolved.
void FakeDevice::Connect(std::shared_ptr<sdbus::Result<>> reply) {
    std::string error;
    bool linked = false;
    {
        std::lock_guard lock(bus_.mutex);
        ++connectCalls_;
        linked = connected_;
        if (hangingConnect_) {
            error = "org.bluez.Error.InProgress";
        } else if (!linked && hangsLeft_ > 0) {
            --hangsLeft_;
            hangingConnect_ = reply;
            return;
        }
    }
    if (error.empty() && linked) {
        reply->returnResults();  // an LE link that is up: nothing to do
        return;
    }
    if (error.empty() && !InRange()) {
        error = "org.bluez.Error.Failed";  // le-connection-abort-by-local
    }
    if (error.empty() && !Pair()) {
        error = "org.bluez.Error.AuthenticationFailed";
    }
    if (!error.empty()) {
        reply->returnError(sdbus::Error(error, "Connect failed"));
        return;
    }
    {
        std::lock_guard lock(bus_.mutex);
        connected_ = true;
    }
    FakeBus::EmitPropertiesChanged(*object_, kDeviceInterface,
                                   {{"Connected", sdbus::Variant(true)}});
    reply->returnResults();
    ExportGatt();
    if (config_.resolveServices) {
        {
            std::lock_guard lock(bus_.mutex);
            resolved_ = true;
        }
        FakeBus::EmitPropertiesChanged(*object_, kDeviceInterface,
                                       {{"ServicesResolved", sdbus::Variant(true)}});
    }
    if (config_.sensor) {
        config_.sensor->Attach(this);
    }
}

// bluetoothd's order: ServicesResolved false, the method reply, Connected
// false. A connection still being made is cancelled.
void FakeDevice::Disconnect(std::shared_ptr<sdbus::Result<>> reply) {
    bool wasConnected = false;
    std::shared_ptr<sdbus::Result<>> cancelled;
    {
        std::lock_guard lock(bus_.mutex);
        ++disconnectCalls_;
        wasConnected = connected_;
        resolved_ = false;
        cancelled = std::move(hangingConnect_);
    }
    if (cancelled) {
        cancelled->returnError(Failed("le-connection-abort-by-local"));
        reply->returnResults();
        return;
    }
    if (!wasConnected) {
        reply->returnError(sdbus::Error("org.bluez.Error.NotConnected", "Not Connected"));
        return;
    }
    FakeBus::EmitPropertiesChanged(*object_, kDeviceInterface,
                                   {{"ServicesResolved", sdbus::Variant(false)}});
    reply->returnResults();
    {
        std::lock_guard lock(bus_.mutex);
        connected_ = false;
    }
    FakeBus::EmitPropertiesChanged(*object_, kDeviceInterface,
                                   {{"Connected", sdbus::Variant(false)}});
    if (config_.sensor) {
        config_.sensor->Detach();
    }
}

// A link loss: one signal with both flags. Notifying stays as it was.
void FakeDevice::EndLink() {
    {
        std::lock_guard lock(bus_.mutex);
        if (!connected_) {
            return;
        }
        connected_ = resolved_ = false;
    }
    FakeBus::EmitPropertiesChanged(
        *object_, kDeviceInterface,
        {{"Connected", sdbus::Variant(false)}, {"ServicesResolved", sdbus::Variant(false)}});
    if (config_.sensor) {
        config_.sensor->Detach();
    }
}

void FakeDevice::DropLink() {
    bus_.RunOnWorker([this] { EndLink(); });
}

void FakeDevice::SetInRange(bool inRange) {
    {
        std::lock_guard lock(bus_.mutex);
        inRange_ = inRange;
    }
    if (!inRange) {
        DropLink();
    }
}

bool FakeDevice::InRange() const {
    std::lock_guard lock(bus_.mutex);
    return inRange_ && (!config_.sensor || config_.sensor->InRange());
}

void FakeDevice::SensorNotify(const SensorFrame& frame) {
    bus_.Post([this, frame] { NotifyOn(ByUuid(kSensorNotifyUuid), frame); });
}

void FakeDevice::SensorLinkDropped() {
    bus_.Post([this] { EndLink(); });  // the sensor's lock is held here
}

// One signal per notification, even when the value repeats.
void FakeDevice::NotifyOn(Characteristic* characteristic, const std::vector<uint8_t>& value) {
    {
        std::lock_guard lock(bus_.mutex);
        if (characteristic == nullptr || !connected_ || !characteristic->notifying ||
            !characteristic->object) {
            return;
        }
        characteristic->value = value;
    }
    FakeBus::EmitPropertiesChanged(*characteristic->object, kCharacteristicInterface,
                                   {{"Value", sdbus::Variant(value)}});
}

FakeDevice::Characteristic* FakeDevice::ByUuid(const std::string& uuid) {
    for (auto& characteristic : characteristics_) {
        if (characteristic->definition.uuid == uuid) {
            return characteristic.get();
        }
    }
    return nullptr;
}

void FakeDevice::StartNotify(Characteristic& c) {
    {
        std::lock_guard lock(bus_.mutex);
        ++startNotifyCalls_;
        if (!connected_) {
            throw Failed("Not connected");
        }
        if (!Has(c.definition, "notify") && !Has(c.definition, "indicate")) {
            throw sdbus::Error("org.bluez.Error.NotSupported", "Operation is not supported");
        }
        if (c.notifying) {
            throw Failed("Already notifying");
        }
        c.notifying = true;
    }
    FakeBus::EmitPropertiesChanged(*c.object, kCharacteristicInterface,
                                   {{"Notifying", sdbus::Variant(true)}});
}

void FakeDevice::StopNotify(Characteristic& c) {
    {
        std::lock_guard lock(bus_.mutex);
        ++stopNotifyCalls_;
        if (!c.notifying) {
            throw Failed("No notify session started");
        }
        c.notifying = false;
    }
    FakeBus::EmitPropertiesChanged(*c.object, kCharacteristicInterface,
                                   {{"Notifying", sdbus::Variant(false)}});
}

void FakeDevice::WriteValue(Characteristic& c, const std::vector<uint8_t>& value,
                            const VariantMap& options) {
    std::string type;
    const auto option = options.find("type");
    if (option != options.end() && option->second.containsValueOfType<std::string>()) {
        type = option->second.get<std::string>();
    }
    std::shared_ptr<VirtualSensor> sensor;
    {
        std::lock_guard lock(bus_.mutex);
        if (!connected_) {
            throw Failed("Not connected");
        }
        const bool command = type == "command" || (type.empty() && !Has(c.definition, "write"));
        if (!Has(c.definition, command ? "write-without-response" : "write")) {
            throw sdbus::Error("org.bluez.Error.NotSupported", "Operation is not supported");
        }
        if (failWrites_) {
            throw Failed("Operation failed with ATT error: 0x0e");
        }
        writes_.push_back({value, type, c.definition.uuid});
        if (c.definition.uuid == kSensorWriteUuid) {
            sensor = config_.sensor;
        }
    }
    if (sensor) {
        sensor->OnWrite(value.data(), value.size());
    }
}

void FakeDevice::FailWrites(bool fail) {
    std::lock_guard lock(bus_.mutex);
    failWrites_ = fail;
}

bool FakeDevice::Notifying() const {
    std::lock_guard lock(bus_.mutex);
    for (const auto& characteristic : characteristics_) {
        if (Has(characteristic->definition, "notify")) {
            return characteristic->notifying;
        }
    }
    return false;
}

}  // namespace orv::test
