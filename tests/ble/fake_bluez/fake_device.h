// One remote device of the fake bluetoothd: org.bluez.Device1 with the
// sensor's GATT objects, behaving as bluetoothd 5.66 does (see shared
// notes). A virtual sensor behind it answers writes to the sensor's write
// characteristic and notifies on its notify characteristic.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "ble/virtual/sensor_gatt_ids.h"
#include "ble/virtual/virtual_sensor.h"
#include "tests/ble/fake_bluez/fake_bus.h"

namespace orv::test {

struct FakeDeviceConfig {
    std::string address;                      // "C0:DE:5E:45:00:01"
    std::optional<std::string> name;          // absent: only the Alias is there
    std::string alias{};                      // empty: the name
    std::shared_ptr<VirtualSensor> sensor{};  // may be null
    bool pairs = false;                       // a passkey asked of the agent on Connect
    bool sensorService = true;                // false: generic access only
    bool notifies = true;                     // false: the notify characteristic only reads
    bool resolveServices = true;              // false: ServicesResolved never comes
    // Linked before the program started (e.g. it crashed): known, with its
    // GATT objects, and silent, as a connected peripheral stops advertising.
    bool connectedAtStart = false;
    int hangingConnects = 0;  // the first Connect calls wait until Disconnect cancels them
};

struct FakeWrite {
    std::vector<uint8_t> value;
    std::string type;  // the "type" option: "command", "request" or empty
    std::string uuid;  // of the characteristic written
    bool operator==(const FakeWrite&) const = default;
};

class FakeDevice : private VirtualSensorHost {
public:
    FakeDevice(FakeBus& bus, FakeDeviceConfig config, const std::string& adapterPath);
    ~FakeDevice() override;
    FakeDevice(const FakeDevice&) = delete;
    FakeDevice& operator=(const FakeDevice&) = delete;

    const std::string& Path() const { return device_.Path(); }
    const FakeDeviceConfig& Config() const { return config_; }
    // The object path of the characteristic with `uuid`.
    std::string CharacteristicPath(const std::string& uuid) const;

    void FailWrites(bool fail);
    // A Value change from `path` while linked, whatever is there.
    void EmitValue(const std::string& path, const std::vector<uint8_t>& value);

    bool Connected() const { return device_.Read<bool>("Connected"); }
    bool Notifying() const { return ByUuid(kSensorNotifyUuid).Read<bool>("Notifying"); }
    // How often the client called "Connect", "Disconnect", "StartNotify", "StopNotify".
    int Calls(const std::string& method) const { return bus_.Locked(calls_)[method]; }
    std::vector<FakeWrite> Writes() const { return bus_.Locked(writes_); }
    // What the agent answered on Connect, or "refused".
    std::string PairingAnswer() const { return bus_.Locked(pairingAnswer_); }

    // For the fake service, on its worker.
    bool InRange() const { return !config_.sensor || config_.sensor->InRange(); }
    void Export(bool announce = false);  // the Device1 object
    void LinkAtStart();                  // as connectedAtStart asks, before org.bluez is taken
    void Announce();                     // new: InterfacesAdded; known: an RSSI when it has none
    void ForgetRssi();                   // discovery ended: RSSI invalidated
    void Unexport();                     // bluetoothd leaves: objects gone, link down

private:
    void SensorNotify(const SensorFrame& frame) override;
    void SensorLinkDropped() override;

    void AttachSensor(bool attach);
    void ExportGatt();
    void Connect(const std::shared_ptr<sdbus::Result<>>& reply);
    void Disconnect(const std::shared_ptr<sdbus::Result<>>& reply);
    bool Pair();
    void EndLink();
    FakeObject& ByUuid(const std::string& uuid) const;
    bool Has(const FakeObject& characteristic, const std::string& flag) const;
    void Notify(FakeObject& characteristic, bool on);
    void WriteValue(FakeObject& characteristic, const std::vector<uint8_t>& value,
                    const VariantMap& options);

    FakeBus& bus_;
    const FakeDeviceConfig config_;
    FakeObject device_;
    std::vector<std::unique_ptr<FakeObject>> services_;
    std::vector<std::unique_ptr<FakeObject>> characteristics_;

    // Guarded by bus_.mutex, with the objects' properties:
    bool failWrites_ = false;
    std::map<std::string, int> calls_;
    std::vector<FakeWrite> writes_;
    std::string pairingAnswer_;
    int hangsLeft_ = 0;
    std::shared_ptr<sdbus::Result<>> hangingConnect_;  // its reply, held until cancelled
};

}  // namespace orv::test
