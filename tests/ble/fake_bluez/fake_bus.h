// What the parts of the fake bluetoothd share: the model lock, the worker
// that sends everything the fake does on its own initiative, the bus
// objects while it runs, and the registered pairing agent.
#pragma once

#include <sdbus-c++/sdbus-c++.h>

#include <cstdint>
#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <vector>

#include "ble/timer_queue.h"

namespace orv::test {

using VariantMap = std::map<std::string, sdbus::Variant>;

class FakeBus {
public:
    struct Agent {
        std::string owner;  // unique bus name of the registering client
        std::string path;
        std::string capability;
        bool isDefault = false;
    };

    mutable std::mutex mutex;  // guards the model of every fake object and `agent`
    Agent agent;

    // Runs `task` on the worker and returns when it is done.
    void RunOnWorker(const std::function<void()>& task);
    void Post(std::function<void()> task) { worker_.Post(std::move(task)); }
    void PostAfter(std::chrono::milliseconds delay, std::function<void()> task) {
        worker_.PostAfter(delay, std::move(task));
    }
    void CancelWork() { worker_.CancelAll(); }
    void StopWorker() { worker_.Stop(); }

    // Set and cleared on the worker while the fake starts and stops; the
    // objects outlive the bus thread that calls their handlers.
    sdbus::IConnection* connection = nullptr;
    sdbus::IObject* root = nullptr;  // "/" with the object manager

    static void EmitPropertiesChanged(sdbus::IObject& object, const std::string& interface,
                                      const VariantMap& changed,
                                      const std::vector<std::string>& invalidated = {});
    void EmitInterfacesAdded(const std::string& path,
                             const std::map<std::string, VariantMap>& interfaces);

    // What the registered agent answered: the D-Bus error name (empty when
    // it accepted), and the passkey as text or the PIN it gave.
    struct AgentAnswer {
        std::string error;
        std::string value;
    };
    // One Agent1 request on behalf of a device, as bluetoothd makes it
    // ("RequestPasskey", "DisplayPinCode", ...). Worker thread only.
    AgentAnswer AskAgent(const std::string& method, const std::string& devicePath);

private:
    TimerQueue worker_;
};

}  // namespace orv::test
