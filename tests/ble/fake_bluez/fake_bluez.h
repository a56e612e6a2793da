// A fake bluetoothd for tests: org.bluez on the (private) system bus with
// one adapter, devices and their GATT objects, discovery, and the agent
// manager, following the behaviour of bluetoothd 5.66. The test drives it
// from any thread; it never blocks the bus while doing so.
// Built after the PrivateSystemBus it serves (see tests/ble/bluez_rig.h).
#pragma once

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

    // Before Start: the adapter hci0, and the devices on it.
    void AddAdapter(bool powered = true);
    FakeDevice& AddDevice(const FakeDeviceConfig& config);
    // Another client (a desktop's Bluetooth panel) keeps a discovery
    // running, so devices in range carry an RSSI.
    void AddOtherScanner();
    void PowerOn();

    int DiscoveryStarts() const { return bus_.Locked(discoveryStarts_); }
    std::string LastDiscoveryFilter() const { return bus_.Locked(lastFilter_); }  // its Transport
    FakeBus::Agent Agent() const { return bus_.Locked(bus_.agent); }
    // A request to the registered agent on behalf of `device`.
    FakeBus::AgentAnswer AskAgent(const FakeDevice& device, const std::string& method);

private:
    void StartOnWorker(bool& started);
    void StopOnWorker();
    void ExportAdapter();
    void ExportAgentManager();
    std::string Sender(sdbus::IObject& object) const;
    void StartDiscovery();
    void StopDiscovery(sdbus::Result<>&& result);
    void Advertise(uint64_t scan);
    void EndDiscovery();
    void OnClientGone(const std::string& name);

    FakeBus bus_;
    std::unique_ptr<sdbus::IConnection> connection_;  // worker thread only
    std::thread loop_;  // the bus thread; ends quietly when the bus goes away
    std::unique_ptr<sdbus::IObject> root_;
    std::unique_ptr<FakeObject> adapter_;
    std::unique_ptr<FakeObject> agentManager_;
    sdbus::Slot nameWatch_;
    // Guarded by bus_.mutex:
    std::set<std::string> clients_;  // discovery sessions, by bus name
    uint64_t scan_ = 0;              // numbers the discovery runs
    std::vector<std::unique_ptr<FakeDevice>> devices_;
    int discoveryStarts_ = 0;
    std::string lastFilter_;
};

}  // namespace orv::test
