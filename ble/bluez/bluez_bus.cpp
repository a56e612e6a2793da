#include "ble/bluez/bluez_bus.h"

#include "ble/bluez/bluez_names.h"
#include "common/debug_log.h"

namespace bluez {

namespace {

constexpr const char* kDaemonName = "org.freedesktop.DBus";
constexpr const char* kDaemonPath = "/org/freedesktop/DBus";

// The sender is checked against org.bluez's unique name in the handlers:
// a match rule on a well-known sender is not filtered reliably client-side.
constexpr const char* kObjectManagerMatch =
    "type='signal',interface='org.freedesktop.DBus.ObjectManager',path='/'";
constexpr const char* kPropertiesMatch =
    "type='signal',interface='org.freedesktop.DBus.Properties',member='PropertiesChanged',"
    "path_namespace='/org/bluez'";
constexpr const char* kNameOwnerMatch =
    "type='signal',sender='org.freedesktop.DBus',interface='org.freedesktop.DBus',"
    "member='NameOwnerChanged',arg0='org.bluez'";

}  // namespace

std::unique_ptr<BluezBus> BluezBus::Connect(Listener listener, Agent1::Handler agent,
                                            std::string& error) {
    std::unique_ptr<BluezBus> bus;
    try {
        bus.reset(new BluezBus(sdbus::createSystemBusConnection(), std::move(listener)));
        bus->Subscribe();
        bus->agent_ = std::make_unique<Agent1>(bus->connection(), std::move(agent));
    } catch (const sdbus::Error& e) {
        error = e.getName() + ": " + e.getMessage();
        return nullptr;
    }
    bus->loop_ = std::thread(&BluezBus::Loop, bus.get());
    return bus;
}

BluezBus::BluezBus(std::unique_ptr<sdbus::IConnection> connection, Listener listener)
    : connection_(std::move(connection)), listener_(std::move(listener)) {}

BluezBus::~BluezBus() {
    if (loop_.joinable()) {
        try {
            connection_->leaveEventLoop();
        } catch (const sdbus::Error& error) {
            LOG_DBUS_FAILURE("leaveEventLoop", error);
        }
        loop_.join();
    }
    agent_.reset();
    matches_.clear();
    root_.reset();
}

// Matches and the first owner look-up happen before the bus thread runs, so
// that no reply or signal is read behind its back.
void BluezBus::Subscribe() {
    sdbus::IConnection& c = *connection_;
    matches_.push_back(
        c.addMatch(kObjectManagerMatch, [this](sdbus::Message& m) { OnObjectManagerSignal(m); }));
    matches_.push_back(
        c.addMatch(kPropertiesMatch, [this](sdbus::Message& m) { OnPropertiesChanged(m); }));
    matches_.push_back(
        c.addMatch(kNameOwnerMatch, [this](sdbus::Message& m) { OnNameOwnerChanged(m); }));
    root_ = sdbus::createProxy(c, kService, kRootPath);

    auto daemon = sdbus::createProxy(c, kDaemonName, kDaemonPath);
    std::string owner;
    try {
        daemon->callMethod("GetNameOwner")
            .onInterface(kDaemonName)
            .withArguments(std::string(kService))
            .storeResultsTo(owner);
    } catch (const sdbus::Error&) {
        owner.clear();  // NameHasNoOwner: bluetoothd is not running (yet)
    }
    std::lock_guard lock(ownerMutex_);
    owner_ = owner;
}

void BluezBus::Loop() {
    try {
        connection_->enterEventLoop();
    } catch (const sdbus::Error& error) {
        LOG_DBUS_FAILURE("enterEventLoop", error);
        alive_.store(false);
        BusEvent gone;
        gone.kind = BusEvent::Kind::ServiceGone;
        listener_(gone);
    }
}

bool BluezBus::ServicePresent() const {
    std::lock_guard lock(ownerMutex_);
    return !owner_.empty();
}

bool BluezBus::FromBluez(const sdbus::Message& message) const {
    std::lock_guard lock(ownerMutex_);
    return !owner_.empty() && message.getSender() == owner_;
}

BleResult BluezBus::GetManagedObjects(ObjectMap& objects) {
    ManagedObjects reply;
    try {
        root_->callMethod("GetManagedObjects")
            .onInterface(kObjectManagerInterface)
            .storeResultsTo(reply);
    } catch (const sdbus::Error& error) {
        return LOG_DBUS_FAILURE("GetManagedObjects", error);
    }
    objects.clear();
    for (const auto& [path, interfaces] : reply) {
        objects.emplace(path, ToInterfaceMap(interfaces));
    }
    return BLE_OK;
}

void BluezBus::OnObjectManagerSignal(sdbus::Message& message) {
    if (!FromBluez(message)) {
        return;
    }
    BusEvent event;
    sdbus::ObjectPath path;
    try {
        if (message.getMemberName() == "InterfacesAdded") {
            VariantInterfaces interfaces;
            message >> path >> interfaces;
            event.kind = BusEvent::Kind::ObjectAdded;
            event.added = ToInterfaceMap(interfaces);
        } else if (message.getMemberName() == "InterfacesRemoved") {
            message >> path >> event.removed;
            event.kind = BusEvent::Kind::ObjectRemoved;
        } else {
            return;
        }
    } catch (const sdbus::Error& error) {
        LOG_DBUS_FAILURE(message.getMemberName().c_str(), error);
        return;
    }
    event.path = path;
    listener_(std::move(event));
}

void BluezBus::OnPropertiesChanged(sdbus::Message& message) {
    if (!FromBluez(message)) {
        return;
    }
    BusEvent event;
    event.kind = BusEvent::Kind::PropertiesChanged;
    event.path = message.getPath();
    VariantMap changed;
    try {
        message >> event.interface >> changed >> event.invalidated;
    } catch (const sdbus::Error& error) {
        LOG_DBUS_FAILURE("PropertiesChanged", error);
        return;
    }
    event.changed = ToPropertyMap(changed);
    listener_(std::move(event));
}

void BluezBus::OnNameOwnerChanged(sdbus::Message& message) {
    std::string name;
    std::string oldOwner;
    std::string newOwner;
    try {
        message >> name >> oldOwner >> newOwner;
    } catch (const sdbus::Error& error) {
        LOG_DBUS_FAILURE("NameOwnerChanged", error);
        return;
    }
    if (name != kService) {
        return;
    }
    {
        std::lock_guard lock(ownerMutex_);
        owner_ = newOwner;
    }
    BusEvent event;
    event.kind = newOwner.empty() ? BusEvent::Kind::ServiceGone : BusEvent::Kind::ServiceBack;
    listener_(std::move(event));
}

}  // namespace bluez
