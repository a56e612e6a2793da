// What the parts of the fake bluetoothd share: the model lock, the worker
// that does everything the fake does on its own initiative, the bus while
// it runs, the registered pairing agent, and the objects it exports.
#pragma once

#include <sdbus-c++/sdbus-c++.h>

#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "ble/timer_queue.h"

namespace orv::test {

using VariantMap = std::map<std::string, sdbus::Variant>;

struct FakeBus {
    struct Agent {
        std::string owner;  // unique bus name of the registering client
        std::string path;
        std::string capability;
        bool isDefault = false;
    };
    // What the agent answered: the D-Bus error name (empty when it
    // accepted), and the passkey as text or the PIN it gave.
    struct AgentAnswer {
        std::string error;
        std::string value;
    };

    mutable std::mutex mutex;  // guards the model of every fake object and `agent`
    Agent agent;
    TimerQueue worker;
    // Set and cleared on the worker while the fake starts and stops; the
    // objects outlive the bus thread that calls their handlers.
    sdbus::IConnection* connection = nullptr;
    sdbus::IObject* root = nullptr;  // "/" with the object manager

    // A copy of a model field, read under the lock.
    template <typename T>
    T Locked(const T& field) const {
        std::lock_guard lock(mutex);
        return field;
    }
    // Runs `task` on the worker and returns when it is done.
    void RunOnWorker(const std::function<void()>& task);
    // One Agent1 request on behalf of a device, as bluetoothd makes it
    // ("RequestPasskey", "DisplayPinCode", ...). Worker thread only.
    AgentAnswer AskAgent(const std::string& method, const std::string& devicePath);
};

// A PropertiesChanged signal from `path`, whether an object is there or not.
void EmitPropertiesChanged(sdbus::IConnection& connection, const std::string& path,
                           const std::string& interface, const VariantMap& changed,
                           const std::vector<std::string>& invalidated = {});

// One object with one interface; its properties are the model, read by the
// bus under the model lock. Those exported keep their last value on the bus
// once gone from the model.
class FakeObject {
public:
    FakeObject(FakeBus& bus, std::string path, std::string interface, VariantMap properties)
        : bus_(bus),
          path_(std::move(path)),
          interface_(std::move(interface)),
          properties_(std::move(properties)) {}

    const std::string& Path() const { return path_; }
    // Worker thread. `methods` registers the object's methods.
    void Export(const std::function<void(sdbus::IObject&)>& methods, bool announce);
    void Unexport();  // not under the model lock: the bus takes it to read
    sdbus::IObject& Object() { return *object_; }

    // Under the model lock.
    const sdbus::Variant* Find(const std::string& name) const;
    template <typename T>
    T Get(const std::string& name) const {
        const sdbus::Variant* value = Find(name);
        return value != nullptr ? value->get<T>() : T{};
    }
    // Outside the model lock.
    template <typename T>
    T Read(const std::string& name) const {
        std::lock_guard lock(bus_.mutex);
        return Get<T>(name);
    }
    // Changes the model and tells it.
    void Set(const VariantMap& changed);
    void Erase(const std::string& name);

private:
    FakeBus& bus_;
    const std::string path_;
    const std::string interface_;
    VariantMap properties_;  // guarded by bus_.mutex, with exported_
    bool exported_ = false;
    std::unique_ptr<sdbus::IObject> object_;
};

}  // namespace orv::test
