// One connection to the system bus: its event thread, the signals of
// org.bluez turned into plain events, and the object-manager read.
#pragma once

#include <sdbus-c++/sdbus-c++.h>

#include <atomic>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "ble/ble_stack.h"
#include "ble/bluez/agent1.h"
#include "ble/bluez/dbus_value.h"

namespace bluez {

struct BusEvent {
    enum class Kind { ObjectAdded, ObjectRemoved, PropertiesChanged, ServiceGone, ServiceBack };
    Kind kind = Kind::PropertiesChanged;
    std::string path;
    InterfaceMap added;                    // ObjectAdded
    std::vector<std::string> removed;      // ObjectRemoved
    std::string interface;                 // PropertiesChanged
    PropertyMap changed;                   // PropertiesChanged
    std::vector<std::string> invalidated;  // PropertiesChanged
};

class BluezBus {
public:
    // Called on the bus thread; must not block.
    using Listener = std::function<void(BusEvent)>;

    // Connects, exports the pairing agent and starts the bus thread; null
    // without a system bus, with the reason in `error`.
    static std::unique_ptr<BluezBus> Connect(Listener listener, Agent1::Handler agent,
                                             std::string& error);
    ~BluezBus();
    BluezBus(const BluezBus&) = delete;
    BluezBus& operator=(const BluezBus&) = delete;

    sdbus::IConnection& connection() { return *connection_; }
    // False once the bus thread ended on an error (the bus went away).
    bool Alive() const { return alive_.load(); }
    // Whether org.bluez has an owner, as last announced by the bus.
    bool ServicePresent() const;
    BleResult GetManagedObjects(ObjectMap& objects);

private:
    explicit BluezBus(std::unique_ptr<sdbus::IConnection> connection, Listener listener);
    void Subscribe();
    void Loop();
    bool FromBluez(const sdbus::Message& message) const;
    void OnObjectManagerSignal(sdbus::Message& message);
    void OnPropertiesChanged(sdbus::Message& message);
    void OnNameOwnerChanged(sdbus::Message& message);

    std::unique_ptr<sdbus::IConnection> connection_;
    Listener listener_;
    std::vector<sdbus::Slot> matches_;
    std::unique_ptr<sdbus::IProxy> root_;
    std::unique_ptr<Agent1> agent_;

    mutable std::mutex ownerMutex_;  // guards owner_
    std::string owner_;              // unique name of org.bluez, empty when absent

    std::atomic<bool> alive_{true};
    std::thread loop_;
};

}  // namespace bluez
