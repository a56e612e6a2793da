#include "tests/ble/fake_bluez/fake_bluez.h"

#include <cstdio>

#include "ble/bluez/bluez_names.h"

namespace orv::test {

namespace {

using bluez::kAdapterInterface;
using bluez::kAgentManagerInterface;

constexpr auto kFirstAdvert = std::chrono::milliseconds(10);
// How often devices in range are seen again while a discovery runs.
constexpr auto kAdvertInterval = std::chrono::milliseconds(50);
constexpr const char* kNameOwnerChanged =
    "type='signal',sender='org.freedesktop.DBus',interface='org.freedesktop.DBus',"
    "member='NameOwnerChanged'";

}  // namespace

FakeBluez::~FakeBluez() {
    Stop();
    bus_.StopWorker();
    devices_.clear();
}

bool FakeBluez::Start() {
    bool started = false;
    bus_.RunOnWorker([&] { StartOnWorker(started); });
    return started;
}

void FakeBluez::StartOnWorker(bool& started) {
    if (connection_) {
        started = true;
        return;
    }
    try {
        connection_ = sdbus::createSystemBusConnection();
        bus_.connection = connection_.get();
        root_ = sdbus::createObject(*connection_, bluez::kRootPath);
        root_->addObjectManager();
        root_->finishRegistration();
        bus_.root = root_.get();
        RegisterAgentManager();
        for (auto& adapter : adapters_) {
            RegisterAdapter(*adapter);
        }
        for (auto& device : devices_) {
            if (device->Config().connectedAtStart) {
                device->LinkAtStart();
            } else if (device->Config().known) {
                device->Export();
            }
        }
        for (auto& adapter : adapters_) {
            if (!adapter->clients.empty()) {
                Advertise(*adapter, adapter->scan, 0);  // heard before we came
            }
        }
        nameWatch_ = connection_->addMatch(kNameOwnerChanged, [this](sdbus::Message& message) {
            std::string name;
            std::string oldOwner;
            std::string newOwner;
            try {
                message >> name >> oldOwner >> newOwner;
            } catch (const sdbus::Error&) {
                return;
            }
            if (newOwner.empty()) {
                OnClientGone(name);
            }
        });
        connection_->requestName(bluez::kService);
        loop_ = std::thread([connection = connection_.get()] {
            try {
                connection->enterEventLoop();
            } catch (const sdbus::Error&) {
                // The bus died under us (a test killed the daemon).
            }
        });
    } catch (const sdbus::Error&) {
        StopOnWorker();
        return;
    }
    std::lock_guard lock(bus_.mutex);
    running_ = true;
    started = true;
}

void FakeBluez::Stop() {
    bus_.RunOnWorker([this] { StopOnWorker(); });
}

void FakeBluez::StopOnWorker() {
    if (!connection_) {
        return;
    }
    bus_.CancelWork();
    if (loop_.joinable()) {
        connection_->leaveEventLoop();
        loop_.join();  // no handler runs from here on
    }
    nameWatch_.reset();
    for (auto& device : devices_) {
        device->Unexport();
    }
    {
        std::lock_guard lock(bus_.mutex);
        for (auto& adapter : adapters_) {
            adapter->clients.clear();
            ++adapter->scan;
        }
        bus_.agent = {};
        running_ = false;
    }
    for (auto& adapter : adapters_) {
        adapter->object.reset();
    }
    agentManager_.reset();
    root_.reset();
    bus_.root = nullptr;
    bus_.connection = nullptr;
    connection_.reset();  // the bus announces that org.bluez has no owner
}

void FakeBluez::AddAdapter(const std::string& name, bool powered) {
    bus_.RunOnWorker([&] {
        auto adapter = std::make_unique<Adapter>();
        adapter->name = name;
        adapter->path = std::string(bluez::kBluezPath) + "/" + name;
        char address[18];
        std::snprintf(address, sizeof address, "00:1A:7D:DA:71:%02X",
                      static_cast<unsigned>(adapters_.size()));
        adapter->address = address;
        adapter->powered = powered;
        std::lock_guard lock(bus_.mutex);
        adapters_.push_back(std::move(adapter));
    });
}

FakeDevice& FakeBluez::AddDevice(const FakeDeviceConfig& config, const std::string& adapter) {
    FakeDevice* added = nullptr;
    bus_.RunOnWorker([&] {
        auto device = std::make_unique<FakeDevice>(bus_, config,
                                                   std::string(bluez::kBluezPath) + "/" + adapter);
        if (connection_ && config.known) {
            device->Export();
        }
        added = device.get();
        std::lock_guard lock(bus_.mutex);
        devices_.push_back(std::move(device));
    });
    return *added;
}

FakeBluez::Adapter* FakeBluez::FindAdapter(const std::string& name) {
    for (auto& adapter : adapters_) {
        if (adapter->name == name) {
            return adapter.get();
        }
    }
    return nullptr;
}

void FakeBluez::SetPowered(const std::string& name, bool powered) {
    bus_.RunOnWorker([&] {
        Adapter* adapter = FindAdapter(name);
        if (adapter == nullptr) {
            return;
        }
        bool wasDiscovering = false;
        {
            std::lock_guard lock(bus_.mutex);
            adapter->powered = powered;
            wasDiscovering = !powered && !adapter->clients.empty();
        }
        if (!adapter->object) {
            return;
        }
        FakeBus::EmitPropertiesChanged(*adapter->object, kAdapterInterface,
                                       {{"Powered", sdbus::Variant(powered)}});
        if (wasDiscovering) {
            EndDiscovery(*adapter);
        }
    });
}

void FakeBluez::RegisterAdapter(Adapter& adapter) {
    adapter.object = sdbus::createObject(*connection_, adapter.path);
    sdbus::IObject& o = *adapter.object;
    o.registerMethod("StartDiscovery")
        .onInterface(kAdapterInterface)
        .implementedAs([this, &adapter] { StartDiscovery(adapter); });
    o.registerMethod("StopDiscovery")
        .onInterface(kAdapterInterface)
        .implementedAs([this, &adapter](sdbus::Result<>&& result) {
            StopDiscovery(adapter, std::move(result));
        });
    o.registerMethod("SetDiscoveryFilter")
        .onInterface(kAdapterInterface)
        .implementedAs([this](VariantMap filter) { SetDiscoveryFilter(filter); });
    o.registerProperty("Address").onInterface(kAdapterInterface).withGetter([&adapter] {
        return adapter.address;
    });
    o.registerProperty("Name").onInterface(kAdapterInterface).withGetter([&adapter] {
        return adapter.name;
    });
    o.registerProperty("Alias").onInterface(kAdapterInterface).withGetter([&adapter] {
        return adapter.name;
    });
    o.registerProperty("Powered").onInterface(kAdapterInterface).withGetter([this, &adapter] {
        std::lock_guard lock(bus_.mutex);
        return adapter.powered;
    });
    o.registerProperty("Discovering").onInterface(kAdapterInterface).withGetter([this, &adapter] {
        std::lock_guard lock(bus_.mutex);
        return !adapter.clients.empty();
    });
    o.finishRegistration();
}

void FakeBluez::RegisterAgentManager() {
    agentManager_ = sdbus::createObject(*connection_, bluez::kBluezPath);
    sdbus::IObject& o = *agentManager_;
    o.registerMethod("RegisterAgent")
        .onInterface(kAgentManagerInterface)
        .implementedAs([this](sdbus::ObjectPath path, std::string capability) {
            const std::string sender = Sender(*agentManager_);
            std::lock_guard lock(bus_.mutex);
            if (bus_.agent.owner == sender) {
                throw sdbus::Error("org.bluez.Error.AlreadyExists", "Already Exists");
            }
            bus_.agent = {sender, path, capability, false};
        });
    // Only the client that registered the agent may use it.
    auto registered = [this](const sdbus::ObjectPath& path) -> FakeBus::Agent& {
        if (bus_.agent.owner != Sender(*agentManager_) || bus_.agent.path != path) {
            throw sdbus::Error("org.bluez.Error.DoesNotExist", "Does Not Exist");
        }
        return bus_.agent;
    };
    o.registerMethod("RequestDefaultAgent")
        .onInterface(kAgentManagerInterface)
        .implementedAs([this, registered](sdbus::ObjectPath path) {
            std::lock_guard lock(bus_.mutex);
            registered(path).isDefault = true;
        });
    o.registerMethod("UnregisterAgent")
        .onInterface(kAgentManagerInterface)
        .implementedAs([this, registered](sdbus::ObjectPath path) {
            std::lock_guard lock(bus_.mutex);
            registered(path) = {};
        });
    o.finishRegistration();
}

std::string FakeBluez::Sender(sdbus::IObject& object) const {
    const sdbus::Message* message = object.getCurrentlyProcessedMessage();
    return message != nullptr ? message->getSender() : std::string();
}

void FakeBluez::SetDiscoveryFilter(const VariantMap& filter) {
    // The keys set, with the transport's value.
    std::string description;
    for (const auto& [key, value] : filter) {
        const bool transport = key == "Transport" && value.containsValueOfType<std::string>();
        description += (description.empty() ? "" : ",") + key;
        description += transport ? "=" + value.get<std::string>() : "";
    }
    std::lock_guard lock(bus_.mutex);
    lastFilter_ = description;
}

// A discovery session belongs to the client that started it.
void FakeBluez::StartDiscovery(Adapter& adapter) {
    const std::string sender = Sender(*adapter.object);
    uint64_t scan = 0;
    bool first = false;
    {
        std::lock_guard lock(bus_.mutex);
        if (!adapter.powered) {
            throw sdbus::Error("org.bluez.Error.NotReady", "Resource Not Ready");
        }
        if (adapter.clients.count(sender) != 0) {
            throw sdbus::Error("org.bluez.Error.InProgress", "Operation already in progress");
        }
        first = adapter.clients.empty();
        adapter.clients.insert(sender);
        ++discoveryStarts_;
        scan = ++adapter.scan;
    }
    if (first) {
        FakeBus::EmitPropertiesChanged(*adapter.object, kAdapterInterface,
                                       {{"Discovering", sdbus::Variant(true)}});
    }
    bus_.PostAfter(kFirstAdvert, [this, &adapter, scan] { Advertise(adapter, scan, 0); });
}

void FakeBluez::Advertise(Adapter& adapter, uint64_t scan, int round) {
    std::vector<FakeDevice*> inRange;
    {
        std::lock_guard lock(bus_.mutex);
        if (adapter.scan != scan || adapter.clients.empty()) {
            return;
        }
    }
    // A connected peripheral stops advertising.
    for (auto& device : devices_) {
        if (device->Path().rfind(adapter.path + "/", 0) == 0 && device->InRange() &&
            !device->Connected()) {
            inRange.push_back(device.get());
        }
    }
    // RSSI moves a little with every advertisement, so that each one shows.
    for (FakeDevice* device : inRange) {
        device->Announce(static_cast<int16_t>(-50 - round % 7));
    }
    bus_.PostAfter(kAdvertInterval,
                   [this, &adapter, scan, round] { Advertise(adapter, scan, round + 1); });
}

// The reply comes after the end of the discovery is announced.
void FakeBluez::StopDiscovery(Adapter& adapter, sdbus::Result<>&& result) {
    const std::string sender = Sender(*adapter.object);
    bool last = false;
    {
        std::lock_guard lock(bus_.mutex);
        if (adapter.clients.erase(sender) == 0) {
            result.returnError(sdbus::Error("org.bluez.Error.Failed", "No discovery started"));
            return;
        }
        last = adapter.clients.empty();
    }
    auto reply = std::make_shared<sdbus::Result<>>(std::move(result));
    bus_.Post([this, &adapter, last, reply] {
        if (last) {
            EndDiscovery(adapter);
        }
        reply->returnResults();
    });
}

// Worker thread, in line with the advertisements.
void FakeBluez::EndDiscovery(Adapter& adapter) {
    {
        std::lock_guard lock(bus_.mutex);
        adapter.clients.clear();
        ++adapter.scan;
    }
    FakeBus::EmitPropertiesChanged(*adapter.object, kAdapterInterface,
                                   {{"Discovering", sdbus::Variant(false)}});
    // RSSI disappears from devices that are not connected.
    for (auto& device : devices_) {
        if (device->Path().rfind(adapter.path + "/", 0) == 0) {
            device->ForgetRssi();
        }
    }
}

void FakeBluez::OnClientGone(const std::string& name) {
    std::vector<Adapter*> ended;
    {
        std::lock_guard lock(bus_.mutex);
        for (auto& adapter : adapters_) {
            if (adapter->clients.erase(name) != 0 && adapter->clients.empty()) {
                ended.push_back(adapter.get());
            }
        }
        if (bus_.agent.owner == name) {
            bus_.agent = {};
        }
    }
    for (Adapter* adapter : ended) {
        bus_.Post([this, adapter] { EndDiscovery(*adapter); });
    }
}

int FakeBluez::DiscoveryStarts() const {
    std::lock_guard lock(bus_.mutex);
    return discoveryStarts_;
}

bool FakeBluez::Discovering() const {
    std::lock_guard lock(bus_.mutex);
    for (const auto& adapter : adapters_) {
        if (!adapter->clients.empty()) {
            return true;
        }
    }
    return false;
}

std::string FakeBluez::LastDiscoveryFilter() const {
    std::lock_guard lock(bus_.mutex);
    return lastFilter_;
}

FakeBus::Agent FakeBluez::Agent() const {
    std::lock_guard lock(bus_.mutex);
    return bus_.agent;
}

FakeBus::AgentAnswer FakeBluez::AskAgent(const FakeDevice& device, const std::string& method) {
    FakeBus::AgentAnswer answer;
    bus_.RunOnWorker([&] { answer = bus_.AskAgent(method, device.Path()); });
    return answer;
}

void FakeBluez::AddOtherScanner(const std::string& adapter) {
    bus_.RunOnWorker([&] {
        std::lock_guard lock(bus_.mutex);
        if (Adapter* found = FindAdapter(adapter)) {
            found->clients.insert(":other.scanner");
        }
    });
}

}  // namespace orv::test
