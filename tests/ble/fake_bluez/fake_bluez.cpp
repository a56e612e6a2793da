#include "tests/ble/fake_bluez/fake_bluez.h"

#include "ble/bluez/bluez_names.h"

namespace orv::test {

namespace {

using bluez::kAdapterInterface;
using bluez::kAgentManagerInterface;
using sdbus::Variant;

const std::string kAdapterPath = std::string(bluez::kBluezPath) + "/hci0";
constexpr auto kFirstAdvert = std::chrono::milliseconds(10);
// How often devices in range are heard while a discovery runs.
constexpr auto kAdvertInterval = std::chrono::milliseconds(50);
constexpr const char* kNameOwnerChanged =
    "type='signal',sender='org.freedesktop.DBus',interface='org.freedesktop.DBus',"
    "member='NameOwnerChanged'";

}  // namespace

FakeBluez::~FakeBluez() {
    Stop();
    bus_.worker.Stop();
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
        ExportAgentManager();
        ExportAdapter();
        for (auto& device : devices_) {
            if (device->Config().connectedAtStart) {
                device->LinkAtStart();
            }
        }
        Advertise(scan_);  // what the other scanner heard before we came
        nameWatch_ = connection_->addMatch(kNameOwnerChanged, [this](sdbus::Message& message) {
            std::string name;
            std::string oldOwner;
            std::string newOwner;
            message >> name >> oldOwner >> newOwner;
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
    started = true;
}

void FakeBluez::Stop() {
    bus_.RunOnWorker([this] { StopOnWorker(); });
}

void FakeBluez::StopOnWorker() {
    if (!connection_) {
        return;
    }
    bus_.worker.CancelAll();
    if (loop_.joinable()) {
        connection_->leaveEventLoop();
        loop_.join();  // no handler runs from here on
    }
    nameWatch_.reset();
    for (auto& device : devices_) {
        device->Unexport();
    }
    if (adapter_) {
        adapter_->Unexport();
    }
    agentManager_.reset();
    {
        std::lock_guard lock(bus_.mutex);
        clients_.clear();
        ++scan_;
        bus_.agent = {};
    }
    root_.reset();
    bus_.root = nullptr;
    bus_.connection = nullptr;
    connection_.reset();  // the bus announces that org.bluez has no owner
}

void FakeBluez::AddAdapter(bool powered) {
    adapter_ = std::make_unique<FakeObject>(bus_, kAdapterPath, kAdapterInterface,
                                            VariantMap{{"Powered", Variant(powered)}});
}

FakeDevice& FakeBluez::AddDevice(const FakeDeviceConfig& config) {
    std::lock_guard lock(bus_.mutex);
    devices_.push_back(std::make_unique<FakeDevice>(bus_, config, kAdapterPath));
    return *devices_.back();
}

void FakeBluez::AddOtherScanner() {
    std::lock_guard lock(bus_.mutex);
    clients_.insert(":other.scanner");
}

void FakeBluez::PowerOn() {
    bus_.RunOnWorker([this] { adapter_->Set({{"Powered", Variant(true)}}); });
}

void FakeBluez::ExportAdapter() {
    if (!adapter_) {
        return;
    }
    adapter_->Export(
        [this](sdbus::IObject& o) {
            o.registerMethod("StartDiscovery").onInterface(kAdapterInterface).implementedAs([this] {
                StartDiscovery();
            });
            o.registerMethod("StopDiscovery")
                .onInterface(kAdapterInterface)
                .implementedAs(
                    [this](sdbus::Result<>&& result) { StopDiscovery(std::move(result)); });
            o.registerMethod("SetDiscoveryFilter")
                .onInterface(kAdapterInterface)
                .implementedAs([this](VariantMap filter) {
                    std::lock_guard lock(bus_.mutex);
                    lastFilter_ =
                        filter.count("Transport") ? filter["Transport"].get<std::string>() : "";
                });
        },
        false);
}

// One agent, the last registered, the default when its path is asked for;
// it goes with its client.
void FakeBluez::ExportAgentManager() {
    agentManager_ =
        std::make_unique<FakeObject>(bus_, bluez::kBluezPath, kAgentManagerInterface, VariantMap{});
    agentManager_->Export(
        [this](sdbus::IObject& o) {
            o.registerMethod("RegisterAgent")
                .onInterface(kAgentManagerInterface)
                .implementedAs([this, &o](sdbus::ObjectPath path, std::string capability) {
                    const std::string sender = Sender(o);
                    std::lock_guard lock(bus_.mutex);
                    bus_.agent = {sender, path, capability, false};
                });
            o.registerMethod("RequestDefaultAgent")
                .onInterface(kAgentManagerInterface)
                .implementedAs([this](sdbus::ObjectPath path) {
                    std::lock_guard lock(bus_.mutex);
                    bus_.agent.isDefault = bus_.agent.path == path;
                });
        },
        false);
}

std::string FakeBluez::Sender(sdbus::IObject& object) const {
    const sdbus::Message* message = object.getCurrentlyProcessedMessage();
    return message != nullptr ? message->getSender() : std::string();
}

// A discovery session belongs to the client that started it.
void FakeBluez::StartDiscovery() {
    const std::string sender = Sender(adapter_->Object());
    uint64_t scan = 0;
    {
        std::lock_guard lock(bus_.mutex);
        if (!adapter_->Get<bool>("Powered")) {
            throw sdbus::Error("org.bluez.Error.NotReady", "Resource Not Ready");
        }
        if (!clients_.insert(sender).second) {
            throw sdbus::Error("org.bluez.Error.InProgress", "Operation already in progress");
        }
        ++discoveryStarts_;
        scan = ++scan_;
    }
    bus_.worker.PostAfter(kFirstAdvert, [this, scan] { Advertise(scan); });
}

// Devices in range are heard until the discovery ends; a connected
// peripheral stops advertising.
void FakeBluez::Advertise(uint64_t scan) {
    {
        std::lock_guard lock(bus_.mutex);
        if (scan_ != scan || clients_.empty()) {
            return;
        }
    }
    for (auto& device : devices_) {
        if (device->InRange() && !device->Connected()) {
            device->Announce();
        }
    }
    bus_.worker.PostAfter(kAdvertInterval, [this, scan] { Advertise(scan); });
}

// The reply comes after the end of the discovery is announced.
void FakeBluez::StopDiscovery(sdbus::Result<>&& result) {
    const std::string sender = Sender(adapter_->Object());
    bool last = false;
    {
        std::lock_guard lock(bus_.mutex);
        if (clients_.erase(sender) == 0) {
            result.returnError(sdbus::Error("org.bluez.Error.Failed", "No discovery started"));
            return;
        }
        last = clients_.empty();
    }
    auto reply = std::make_shared<sdbus::Result<>>(std::move(result));
    bus_.worker.Post([this, last, reply] {
        if (last) {
            EndDiscovery();
        }
        reply->returnResults();
    });
}

// Worker thread, in line with the advertisements. RSSI disappears from
// devices that are not connected.
void FakeBluez::EndDiscovery() {
    {
        std::lock_guard lock(bus_.mutex);
        clients_.clear();
        ++scan_;
    }
    for (auto& device : devices_) {
        device->ForgetRssi();
    }
}

void FakeBluez::OnClientGone(const std::string& name) {
    bool ended = false;
    {
        std::lock_guard lock(bus_.mutex);
        ended = clients_.erase(name) != 0 && clients_.empty();
        if (bus_.agent.owner == name) {
            bus_.agent = {};
        }
    }
    if (ended) {
        bus_.worker.Post([this] { EndDiscovery(); });
    }
}

FakeBus::AgentAnswer FakeBluez::AskAgent(const FakeDevice& device, const std::string& method) {
    FakeBus::AgentAnswer answer;
    bus_.RunOnWorker([&] { answer = bus_.AskAgent(method, device.Path()); });
    return answer;
}

}  // namespace orv::test
