#include "ble/bluez/agent_manager1.h"

#include "ble/bluez/bluez_names.h"
#include "ble/bluez/dbus_value.h"

namespace bluez {

AgentManager1::AgentManager1(sdbus::IConnection& connection, std::chrono::milliseconds timeout)
    : proxy_(sdbus::createProxy(connection, kService, kBluezPath)), timeout_(timeout) {}

BleResult AgentManager1::RegisterAgent(const std::string& agentPath,
                                       const std::string& capability) {
    try {
        proxy_->callMethod("RegisterAgent")
            .onInterface(kAgentManagerInterface)
            .withTimeout(timeout_)
            .withArguments(sdbus::ObjectPath(agentPath), capability);
    } catch (const sdbus::Error& error) {
        // Registered by an earlier open on this same connection.
        if (error.getName() == "org.bluez.Error.AlreadyExists") {
            return BLE_OK;
        }
        return LOG_DBUS_FAILURE("RegisterAgent", error);
    }
    return BLE_OK;
}

BleResult AgentManager1::RequestDefaultAgent(const std::string& agentPath) {
    try {
        proxy_->callMethod("RequestDefaultAgent")
            .onInterface(kAgentManagerInterface)
            .withTimeout(timeout_)
            .withArguments(sdbus::ObjectPath(agentPath));
    } catch (const sdbus::Error& error) {
        return LOG_DBUS_FAILURE("RequestDefaultAgent", error);
    }
    return BLE_OK;
}

}  // namespace bluez
