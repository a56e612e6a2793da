#include "tests/ble/fake_bluez/fake_device.h"

#include <algorithm>
#include <cstdio>

#include "ble/bluez/bluez_names.h"
#include "ble/virtual/sensor_gatt_ids.h"

namespace orv::test {

namespace {

using bluez::kCharacteristicInterface;
using bluez::kDeviceInterface;
using Strings = std::vector<std::string>;
using sdbus::Variant;

sdbus::Error Failed(const char* message) {
    return sdbus::Error("org.bluez.Error.Failed", message);
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

VariantMap DeviceProperties(const FakeDeviceConfig& config, const std::string& adapterPath) {
    const std::string alias = config.alias.empty() ? config.name.value_or("") : config.alias;
    VariantMap properties{{"Address", Variant(config.address)},
                          {"Alias", Variant(alias)},
                          {"Adapter", Variant(sdbus::ObjectPath(adapterPath))},
                          {"Paired", Variant(false)},
                          {"Connected", Variant(false)},
                          {"ServicesResolved", Variant(false)}};
    if (config.name) {
        properties["Name"] = Variant(*config.name);
    }
    return properties;
}

}  // namespace

// The sensor's layout: generic access, then the serial-like service.
FakeDevice::FakeDevice(FakeBus& bus, FakeDeviceConfig config, const std::string& adapterPath)
    : bus_(bus),
      config_(std::move(config)),
      device_(bus, DevicePath(adapterPath, config_.address), kDeviceInterface,
              DeviceProperties(config_, adapterPath)),
      hangsLeft_(config_.hangingConnects) {
    std::vector<std::pair<const char*, std::vector<std::pair<const char*, Strings>>>> layout = {
        {kGenericAccessUuid, {{kDeviceNameUuid, {"read"}}}},
        {kSensorServiceUuid,
         {{kSensorWriteUuid, {"write-without-response", "write"}},
          {kSensorNotifyUuid, {config_.notifies ? "notify" : "read"}}}},
    };
    if (!config_.sensorService) {
        layout.pop_back();
    }
    int handle = 1;
    for (const auto& [uuid, characteristics] : layout) {
        const std::string path = Numbered(Path(), "service", handle++);
        services_.push_back(std::make_unique<FakeObject>(
            bus, path, bluez::kServiceInterface,
            VariantMap{{"UUID", Variant(std::string(uuid))},
                       {"Device", Variant(sdbus::ObjectPath(Path()))}}));
        for (const auto& [characteristic, flags] : characteristics) {
            characteristics_.push_back(std::make_unique<FakeObject>(
                bus, Numbered(path, "char", handle), kCharacteristicInterface,
                VariantMap{{"UUID", Variant(std::string(characteristic))},
                           {"Service", Variant(sdbus::ObjectPath(path))},
                           {"Flags", Variant(flags)},
                           {"Notifying", Variant(false)}}));
            handle += 2;  // declaration and value
        }
    }
}

FakeDevice::~FakeDevice() {
    AttachSensor(false);
}

void FakeDevice::AttachSensor(bool attach) {
    if (config_.sensor && attach) {
        config_.sensor->Attach(this);
    } else if (config_.sensor) {
        config_.sensor->Detach();
    }
}

void FakeDevice::Export(bool announce) {
    device_.Export(
        [this](sdbus::IObject& o) {
            for (const char* method : {"Connect", "Disconnect"}) {
                o.registerMethod(method)
                    .onInterface(kDeviceInterface)
                    .implementedAs([this, method](sdbus::Result<>&& result) {
                        auto reply = std::make_shared<sdbus::Result<>>(std::move(result));
                        bus_.worker.Post([this, method, reply] {
                            method[0] == 'C' ? Connect(reply) : Disconnect(reply);
                        });
                    });
            }
        },
        announce);
}

void FakeDevice::LinkAtStart() {
    device_.Set({{"Connected", Variant(true)}, {"ServicesResolved", Variant(true)}});
    Export();
    ExportGatt();
    AttachSensor(true);
}

// A listed device shows that it advertises through its RSSI, which
// bluetoothd tells only when it moves by 8 dBm: once per discovery here.
void FakeDevice::Announce() {
    if (device_.Read<int16_t>("RSSI") == 0) {  // none
        device_.Set({{"RSSI", Variant(int16_t{-50})}});
    }
    Export(true);  // the first time it is heard
}

void FakeDevice::ForgetRssi() {
    if (!Connected()) {
        device_.Erase("RSSI");
    }
}

// Objects go first, so that nothing of the reset is told.
void FakeDevice::Unexport() {
    AttachSensor(false);
    for (auto& object : characteristics_) {
        object->Unexport();
        object->Set({{"Notifying", Variant(false)}});
    }
    for (auto& object : services_) {
        object->Unexport();
    }
    device_.Unexport();
    device_.Set({{"Connected", Variant(false)}, {"ServicesResolved", Variant(false)}});
    device_.Erase("RSSI");
    std::lock_guard lock(bus_.mutex);
    hangingConnect_.reset();
}

void FakeDevice::ExportGatt() {
    for (auto& service : services_) {
        service->Export({}, true);
    }
    for (auto& c : characteristics_) {
        FakeObject* characteristic = c.get();
        characteristic->Export(
            [this, characteristic](sdbus::IObject& o) {
                o.registerMethod("StartNotify")
                    .onInterface(kCharacteristicInterface)
                    .implementedAs([this, characteristic] { Notify(*characteristic, true); });
                o.registerMethod("StopNotify")
                    .onInterface(kCharacteristicInterface)
                    .implementedAs([this, characteristic] { Notify(*characteristic, false); });
                o.registerMethod("WriteValue")
                    .onInterface(kCharacteristicInterface)
                    .implementedAs(
                        [this, characteristic](std::vector<uint8_t> value, VariantMap options) {
                            WriteValue(*characteristic, value, options);
                        });
            },
            true);
    }
}

bool FakeDevice::Pair() {
    if (!config_.pairs || device_.Read<bool>("Paired")) {
        return true;
    }
    // The sensor takes only its own passkey.
    const FakeBus::AgentAnswer answer = bus_.AskAgent("RequestPasskey", Path());
    const bool accepted = answer.error.empty() && answer.value == "482913";
    {
        std::lock_guard lock(bus_.mutex);
        pairingAnswer_ = answer.error.empty() ? answer.value : "refused";
    }
    if (accepted) {
        device_.Set({{"Paired", Variant(true)}});
    }
    return accepted;
}

// bluetoothd's order: Connected, the method reply, the GATT objects, then
// ServicesResolved.
void FakeDevice::Connect(const std::shared_ptr<sdbus::Result<>>& reply) {
    const char* error = nullptr;
    bool linked = false;
    {
        std::lock_guard lock(bus_.mutex);
        ++calls_["Connect"];
        linked = device_.Get<bool>("Connected");
        if (hangingConnect_) {
            error = "org.bluez.Error.InProgress";
        } else if (!linked && hangsLeft_ > 0) {
            --hangsLeft_;
            hangingConnect_ = reply;
            return;
        }
    }
    if (error == nullptr && !linked && !InRange()) {
        error = "org.bluez.Error.Failed";  // le-connection-abort-by-local
    } else if (error == nullptr && !linked && !Pair()) {
        error = "org.bluez.Error.AuthenticationFailed";
    }
    if (error != nullptr) {
        return reply->returnError(sdbus::Error(error, "Connect failed"));
    }
    if (linked) {
        return reply->returnResults();  // an LE link that is up: nothing to do
    }
    device_.Set({{"Connected", Variant(true)}});
    reply->returnResults();
    ExportGatt();
    if (config_.resolveServices) {
        device_.Set({{"ServicesResolved", Variant(true)}});
    }
    AttachSensor(true);
}

// bluetoothd's order: ServicesResolved false, the method reply, Connected
// false. A connection still being made is cancelled.
void FakeDevice::Disconnect(const std::shared_ptr<sdbus::Result<>>& reply) {
    bool wasConnected = false;
    std::shared_ptr<sdbus::Result<>> cancelled;
    {
        std::lock_guard lock(bus_.mutex);
        ++calls_["Disconnect"];
        wasConnected = device_.Get<bool>("Connected");
        cancelled = std::move(hangingConnect_);
    }
    if (cancelled) {
        cancelled->returnError(Failed("le-connection-abort-by-local"));
        return reply->returnResults();
    }
    if (!wasConnected) {
        return reply->returnError(sdbus::Error("org.bluez.Error.NotConnected", "Not Connected"));
    }
    device_.Set({{"ServicesResolved", Variant(false)}});
    reply->returnResults();
    device_.Set({{"Connected", Variant(false)}});
    AttachSensor(false);
}

// A link loss: one signal with both flags. Notifying stays as it was.
void FakeDevice::EndLink() {
    if (!Connected()) {
        return;
    }
    device_.Set({{"Connected", Variant(false)}, {"ServicesResolved", Variant(false)}});
    AttachSensor(false);
}

void FakeDevice::SensorNotify(const SensorFrame& frame) {
    bus_.worker.Post([this, frame] {
        if (Connected() && Notifying()) {  // one signal each, even when the value repeats
            EmitValue(CharacteristicPath(kSensorNotifyUuid), frame);
        }
    });
}

void FakeDevice::SensorLinkDropped() {
    bus_.worker.Post([this] { EndLink(); });  // the sensor's lock is held here
}

void FakeDevice::EmitValue(const std::string& path, const std::vector<uint8_t>& value) {
    bus_.RunOnWorker([&] {
        if (bus_.connection != nullptr) {
            EmitPropertiesChanged(*bus_.connection, path, kCharacteristicInterface,
                                  {{"Value", Variant(value)}});
        }
    });
}

FakeObject& FakeDevice::ByUuid(const std::string& uuid) const {
    std::lock_guard lock(bus_.mutex);
    for (const auto& characteristic : characteristics_) {
        if (characteristic->Get<std::string>("UUID") == uuid) {
            return *characteristic;
        }
    }
    return *characteristics_.front();
}

std::string FakeDevice::CharacteristicPath(const std::string& uuid) const {
    return ByUuid(uuid).Path();
}

bool FakeDevice::Has(const FakeObject& characteristic, const std::string& flag) const {
    const Strings flags = characteristic.Get<Strings>("Flags");
    return std::find(flags.begin(), flags.end(), flag) != flags.end();
}

void FakeDevice::Notify(FakeObject& c, bool on) {
    {
        std::lock_guard lock(bus_.mutex);
        ++calls_[on ? "StartNotify" : "StopNotify"];
        if (on && !device_.Get<bool>("Connected")) {
            throw Failed("Not connected");
        }
        if (on && !Has(c, "notify")) {
            throw sdbus::Error("org.bluez.Error.NotSupported", "Operation is not supported");
        }
        if (c.Get<bool>("Notifying") == on) {
            throw Failed(on ? "Already notifying" : "No notify session started");
        }
    }
    c.Set({{"Notifying", Variant(on)}});
}

void FakeDevice::WriteValue(FakeObject& c, const std::vector<uint8_t>& value,
                            const VariantMap& options) {
    const std::string type = options.count("type") ? options.at("type").get<std::string>() : "";
    std::shared_ptr<VirtualSensor> sensor;
    {
        std::lock_guard lock(bus_.mutex);
        if (!device_.Get<bool>("Connected")) {
            throw Failed("Not connected");
        }
        if (!Has(c, type == "command" ? "write-without-response" : "write")) {
            throw sdbus::Error("org.bluez.Error.NotSupported", "Operation is not supported");
        }
        if (failWrites_) {
            throw Failed("Operation failed with ATT error: 0x0e");
        }
        const std::string uuid = c.Get<std::string>("UUID");
        writes_.push_back({value, type, uuid});
        if (uuid == kSensorWriteUuid) {
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

}  // namespace orv::test
