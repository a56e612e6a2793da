#include "ble/bluez/agent_manager1.h"

#include "ble/bluez/bluez_names.h"
#include "ble/bluez/dbus_value.h"

namespace bluez {

AgentManager1::AgentManager1(sdbus::IConnection& connection, std::chrono::milliseconds timeout)
    : proxy_(sdbus::createProxy(connection, kService, kBluezPath)), timeout_(timeout) {}

BleResult AgentManager1::RegisterAgent(const std::string& agentPath,
                                       const std::string& capability) {
    // Registered by an earlier open on this same connection.
    return DBUS_CALL(
        *proxy_, kAgentManagerInterface, "RegisterAgent", timeout_,
        [](const sdbus::Error& e) { return e.getName() == "org.bluez.Error.AlreadyExists"; },
        sdbus::ObjectPath(agentPath), capability);
}

BleResult AgentManager1::RequestDefaultAgent(const std::string& agentPath) {
    return DBUS_CALL(*proxy_, kAgentManagerInterface, "RequestDefaultAgent", timeout_, {},
                     sdbus::ObjectPath(agentPath));
}

}  // namespace bluez
