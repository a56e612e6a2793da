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

}  // namespace orv::test
