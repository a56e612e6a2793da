// The TruSim client's listener. Every notification but OnE6PlayerData arrives
// on a thread of its own, so calls may overlap and come out of message order;
// OnE6PlayerData runs on the connection thread and holds up reception meanwhile.
#pragma once

#include <string>

#include "simulator/e6_trusim_records.h"

class E6TruSimClientCallback {
public:
    virtual ~E6TruSimClientCallback() = default;

    virtual void OnConnect() = 0;
    virtual void OnDisconnect() = 0;
    virtual void OnE6Auth(bool success) = 0;
    virtual void OnE6PlayerData(E6PlayerData data) = 0;
    virtual void OnE6EnvironmentData(E6EnvironmentData data) = 0;
    virtual void OnE6ArmState(int state) = 0;  // 0 armed, 1 disarmed
    virtual void OnE6Warning(std::string text) = 0;
};
