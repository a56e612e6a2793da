// org.bluez.AgentManager1 on /org/bluez: where the pairing agent registers.
#pragma once

#include <sdbus-c++/sdbus-c++.h>

#include <chrono>
#include <memory>
#include <string>

#include "ble/ble_stack.h"

namespace bluez {

class AgentManager1 {
public:
    AgentManager1(sdbus::IConnection& connection, std::chrono::milliseconds timeout);

    BleResult RegisterAgent(const std::string& agentPath, const std::string& capability);
    BleResult RequestDefaultAgent(const std::string& agentPath);

private:
    std::unique_ptr<sdbus::IProxy> proxy_;
    std::chrono::milliseconds timeout_;
};

}  // namespace bluez
