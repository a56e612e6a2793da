#include "tests/ble/fake_bluez/fake_bus.h"

#include <future>

#include "ble/bluez/bluez_names.h"
#include "ble/virtual/sensor_gatt_ids.h"

namespace orv::test {

namespace {

constexpr auto kAgentTimeout = std::chrono::seconds(5);
constexpr uint32_t kComparisonNumber = 123456;

}  // namespace

void FakeBus::RunOnWorker(const std::function<void()>& task) {
    if (worker.OnQueueThread()) {
        task();
        return;
    }
    std::promise<void> done;
    if (worker.Post([&] {
            task();
            done.set_value();
        }) != 0) {
        done.get_future().wait();
    }
}

FakeBus::AgentAnswer FakeBus::AskAgent(const std::string& method, const std::string& devicePath) {
    Agent registered;
    {
        std::lock_guard lock(mutex);
        registered = agent;
    }
    if (connection == nullptr || registered.owner.empty()) {
        return {"no agent", ""};
    }
    auto proxy = sdbus::createProxy(*connection, registered.owner, registered.path);
    auto call = proxy->createMethodCall(bluez::kAgentInterface, method);
    call << sdbus::ObjectPath(devicePath);
    if (method == "RequestConfirmation" || method == "DisplayPasskey") {
        call << kComparisonNumber;
    }
    if (method == "DisplayPasskey") {
        call << uint16_t{0};  // digits typed so far
    } else if (method == "DisplayPinCode") {
        call << std::string("0000");
    } else if (method == "AuthorizeService") {
        call << std::string(kSensorServiceUuid);
    }
    AgentAnswer answer;
    try {
        auto reply = proxy->callMethod(call, kAgentTimeout);
        if (method == "RequestPasskey") {
            uint32_t passkey = 0;
            reply >> passkey;
            answer.value = std::to_string(passkey);
        } else if (method == "RequestPinCode") {
            reply >> answer.value;
        }
    } catch (const sdbus::Error& error) {
        answer.error = error.getName();
    }
    return answer;
}

void EmitPropertiesChanged(sdbus::IConnection& connection, const std::string& path,
                           const std::string& interface, const VariantMap& changed,
                           const std::vector<std::string>& invalidated) {
    auto sender = sdbus::createObject(connection, path);  // registers nothing
    auto signal = sender->createSignal(bluez::kPropertiesInterface, "PropertiesChanged");
    signal << interface << changed << invalidated;
    sender->emitSignal(signal);
}

void FakeObject::Export(const std::function<void(sdbus::IObject&)>& methods, bool announce) {
    if (object_) {
        return;
    }
    object_ = sdbus::createObject(*bus_.connection, path_);
    VariantMap initial;
    {
        std::lock_guard lock(bus_.mutex);
        initial = properties_;
        exported_ = true;
    }
    for (const auto& [name, value] : initial) {
        auto current = [this, name = name, last = value] {
            std::lock_guard lock(bus_.mutex);
            const sdbus::Variant* found = Find(name);
            return found != nullptr ? *found : last;
        };
        auto property = object_->registerProperty(name);  // registered when it goes
        property.onInterface(interface_);
        const std::string type = value.peekValueType();
        if (type == "b") {
            property.withGetter([current] { return current().get<bool>(); });
        } else if (type == "o") {
            property.withGetter([current] { return current().get<sdbus::ObjectPath>(); });
        } else if (type == "as") {
            property.withGetter([current] { return current().get<std::vector<std::string>>(); });
        } else if (type == "n") {
            property.withGetter([current] { return current().get<int16_t>(); });
        } else {
            property.withGetter([current] { return current().get<std::string>(); });
        }
    }
    if (methods) {
        methods(*object_);
    }
    object_->finishRegistration();
    if (announce) {
        auto signal = bus_.root->createSignal(bluez::kObjectManagerInterface, "InterfacesAdded");
        signal << sdbus::ObjectPath(path_)
               << std::map<std::string, VariantMap>{{interface_, initial}};
        bus_.root->emitSignal(signal);
    }
}

void FakeObject::Unexport() {
    {
        std::lock_guard lock(bus_.mutex);
        exported_ = false;
    }
    object_.reset();
}

const sdbus::Variant* FakeObject::Find(const std::string& name) const {
    const auto found = properties_.find(name);
    return found != properties_.end() ? &found->second : nullptr;
}

void FakeObject::Set(const VariantMap& changed) {
    bool exported = false;
    {
        std::lock_guard lock(bus_.mutex);
        for (const auto& [name, value] : changed) {
            properties_[name] = value;
        }
        exported = exported_;
    }
    if (exported) {
        EmitPropertiesChanged(*bus_.connection, path_, interface_, changed);
    }
}

void FakeObject::Erase(const std::string& name) {
    bool exported = false;
    {
        std::lock_guard lock(bus_.mutex);
        const bool erased = properties_.erase(name) != 0;
        exported = exported_ && erased;
    }
    if (exported) {
        EmitPropertiesChanged(*bus_.connection, path_, interface_, {}, {name});
    }
}

}  // namespace orv::test
