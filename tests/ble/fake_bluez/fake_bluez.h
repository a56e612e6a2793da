// A fake bluetoothd for tests: org.bluez on the (private) system bus with
// adapters, devices and their GATT objects, discovery, and the agent
// manager, following the behaviour of bluetoothd 5.66. The test drives it
// from any thread; it never blocks the bus while doing so.
//
//   PrivateSystemBus bus;           // first: the daemon and the address
//   FakeBluez bluez;
//   bluez.AddAdapter();
//   FakeDevice& sensor = bluez.AddDevice({.address = "C0:DE:5E:45:00:01",
//                                         .name = "orvane-demo",
//                                         .sensor = std::make_shared<VirtualSensor>()});
//   bluez.Start();
#pragma once

#include <sdbus-c++/sdbus-c++.h>

#include <chrono>
#include <memory>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "tests/ble/fake_bluez/fake_bus.h"
#include "tests/ble/fake_bluez/fake_device.h"

namespace orv::test {

class FakeBluez {
public:
    FakeBluez() = default;
    ~FakeBluez();
    FakeBluez(const FakeBluez&) = delete;
    FakeBluez& operator=(const FakeBluez&) = delete;

    // bluetoothd appears: everything is exported, then org.bluez is taken.
    bool Start();
    // bluetoothd leaves: its connection closes with all its objects.
    void Stop();

    // Before Start.
    void AddAdapter(const std::string& name = "hci0", bool powered = true);
    void SetPowered(const std::string& name, bool powered);
    FakeDevice& AddDevice(const FakeDeviceConfig& config, const std::string& adapter = "hci0");
    // Before Start: another client (a desktop's Bluetooth panel) keeps a
    // discovery running on the adapter, so devices in range carry an RSSI.
    void AddOtherScanner(const std::string& adapter = "hci0");

    int DiscoveryStarts() const;
    bool Discovering() const;
    std::string LastDiscoveryFilter() const;  // "Transport=le"
    FakeBus::Agent Agent() const;

    // A request to the registered agent on behalf of `device`.
    FakeBus::AgentAnswer AskAgent(const FakeDevice& device, const std::string& method);

private:
    struct Adapter {
        std::string name;
        std::string path;
        std::string address;
        bool powered = true;
        std::set<std::string> clients;  // discovery sessions, by bus name
        uint64_t scan = 0;              // numbers the discovery runs
        std::unique_ptr<sdbus::IObject> object;
    };

    void StartOnWorker(bool& started);
    void StopOnWorker();
    void RegisterAdapter(Adapter& adapter);
    void RegisterAgentManager();
    std::string Sender(sdbus::IObject& object) const;
    void StartDiscovery(Adapter& adapter);
    void StopDiscovery(Adapter& adapter, sdbus::Result<>&& result);
    void SetDiscoveryFilter(const VariantMap& filter);
    void Advertise(Adapter& adapter, uint64_t scan, int round);
    void EndDiscovery(Adapter& adapter);
    void OnClientGone(const std::string& name);
    Adapter* FindAdapter(const std::string& name);

    FakeBus bus_;
    std::unique_ptr<sdbus::IConnection> connection_;  // worker thread only
    std::thread loop_;  // the bus thread; ends quietly when the bus goes away
    std::unique_ptr<sdbus::IObject> root_;
    std::unique_ptr<sdbus::IObject> agentManager_;
    sdbus::Slot nameWatch_;
    // Guarded by bus_.mutex (the adapters' model fields):
    std::vector<std::unique_ptr<Adapter>> adapters_;
    std::vector<std::unique_ptr<FakeDevice>> devices_;
    int discoveryStarts_ = 0;
    std::string lastFilter_;
    bool running_ = false;
};

}  // namespace orv::test
