#include "tests/ble/fake_bluez/fake_bus.h"

#include <future>

#include "ble/bluez/bluez_names.h"

namespace orv::test {

namespace {

constexpr auto kAgentTimeout = std::chrono::seconds(5);

}  // namespace

void FakeBus::RunOnWorker(const std::function<void()>& task) {
    if (worker_.OnQueueThread()) {
        task();
        return;
    }
    std::promise<void> done;
    if (worker_.Post([&] {
            task();
            done.set_value();
        }) != 0) {
        done.get_future().wait();
    }
}

void FakeBus::EmitPropertiesChanged(sdbus::IObject& object, const std::string& interface,
                                    const VariantMap& changed,
                                    const std::vector<std::string>& invalidated) {
    auto signal = object.createSignal(bluez::kPropertiesInterface, "PropertiesChanged");
    signal << interface << changed << invalidated;
    object.emitSignal(signal);
}

void FakeBus::EmitInterfacesAdded(const std::string& path,
                                  const std::map<std::string, VariantMap>& interfaces) {
    auto signal = root->createSignal(bluez::kObjectManagerInterface, "InterfacesAdded");
    signal << sdbus::ObjectPath(path) << interfaces;
    root->emitSignal(signal);
}

void FakeBus::EmitInterfacesRemoved(const std::string& path,
                                    const std::vector<std::string>& interfaces) {
    auto signal = root->createSignal(bluez::kObjectManagerInterface, "InterfacesRemoved");
    signal << sdbus::ObjectPath(path) << interfaces;
    root->emitSignal(signal);
}

std::unique_ptr<sdbus::IProxy> FakeBus::AgentProxy() {
    Agent registered;
    {
        std::lock_guard lock(mutex);
        registered = agent;
    }
    if (connection == nullptr || registered.owner.empty()) {
        return nullptr;
    }
    return sdbus::createProxy(*connection, registered.owner, registered.path);
}

std::optional<uint32_t> FakeBus::AskPasskey(const std::string& devicePath) {
    auto proxy = AgentProxy();
    if (!proxy) {
        return std::nullopt;
    }
    uint32_t passkey = 0;
    try {
        proxy->callMethod("RequestPasskey")
            .onInterface(bluez::kAgentInterface)
            .withTimeout(kAgentTimeout)
            .withArguments(sdbus::ObjectPath(devicePath))
            .storeResultsTo(passkey);
    } catch (const sdbus::Error&) {
        return std::nullopt;
    }
    return passkey;
}

std::optional<std::string> FakeBus::AskPinCode(const std::string& devicePath) {
    auto proxy = AgentProxy();
    if (!proxy) {
        return std::nullopt;
    }
    std::string pin;
    try {
        proxy->callMethod("RequestPinCode")
            .onInterface(bluez::kAgentInterface)
            .withTimeout(kAgentTimeout)
            .withArguments(sdbus::ObjectPath(devicePath))
            .storeResultsTo(pin);
    } catch (const sdbus::Error&) {
        return std::nullopt;
    }
    return pin;
}

bool FakeBus::AskConfirmation(const std::string& devicePath, uint32_t passkey) {
    auto proxy = AgentProxy();
    if (!proxy) {
        return false;
    }
    try {
        proxy->callMethod("RequestConfirmation")
            .onInterface(bluez::kAgentInterface)
            .withTimeout(kAgentTimeout)
            .withArguments(sdbus::ObjectPath(devicePath), passkey);
    } catch (const sdbus::Error&) {
        return false;  // org.bluez.Error.Rejected
    }
    return true;
}

}  // namespace orv::test
