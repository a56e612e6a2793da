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

bool FakeBus::CallAgent(const std::function<void(sdbus::IProxy&)>& call) {
    Agent registered;
    {
        std::lock_guard lock(mutex);
        registered = agent;
    }
    if (connection == nullptr || registered.owner.empty()) {
        return false;
    }
    auto proxy = sdbus::createProxy(*connection, registered.owner, registered.path);
    try {
        call(*proxy);
    } catch (const sdbus::Error&) {
        return false;  // org.bluez.Error.Rejected, or no answer
    }
    return true;
}

std::optional<uint32_t> FakeBus::AskPasskey(const std::string& devicePath) {
    uint32_t passkey = 0;
    const bool answered = CallAgent([&](sdbus::IProxy& proxy) {
        proxy.callMethod("RequestPasskey")
            .onInterface(bluez::kAgentInterface)
            .withTimeout(kAgentTimeout)
            .withArguments(sdbus::ObjectPath(devicePath))
            .storeResultsTo(passkey);
    });
    return answered ? std::optional(passkey) : std::nullopt;
}

std::optional<std::string> FakeBus::AskPinCode(const std::string& devicePath) {
    std::string pin;
    const bool answered = CallAgent([&](sdbus::IProxy& proxy) {
        proxy.callMethod("RequestPinCode")
            .onInterface(bluez::kAgentInterface)
            .withTimeout(kAgentTimeout)
            .withArguments(sdbus::ObjectPath(devicePath))
            .storeResultsTo(pin);
    });
    return answered ? std::optional(pin) : std::nullopt;
}

bool FakeBus::AskConfirmation(const std::string& devicePath, uint32_t passkey) {
    return CallAgent([&](sdbus::IProxy& proxy) {
        proxy.callMethod("RequestConfirmation")
            .onInterface(bluez::kAgentInterface)
            .withTimeout(kAgentTimeout)
            .withArguments(sdbus::ObjectPath(devicePath), passkey);
    });
}

}  // namespace orv::test
