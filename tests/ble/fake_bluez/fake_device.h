// One remote device of the fake bluetoothd: org.bluez.Device1 with its
// GattService1 and GattCharacteristic1 objects, behaving as bluetoothd 5.66
// does (see shared notes). A virtual sensor behind it answers writes to the
// sensor's write characteristic and notifies on its notify characteristic.
#pragma once

#include <sdbus-c++/sdbus-c++.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "ble/virtual/virtual_sensor.h"
#include "tests/ble/fake_bluez/fake_bus.h"

namespace orv::test {

struct FakeCharacteristic {
    std::string uuid;
    std::vector<std::string> flags;  // "read", "write", "write-without-response", "notify", ...
};

struct FakeService {
    std::string uuid;
    std::vector<FakeCharacteristic> characteristics;
};

// The sensor's layout: generic access, then the serial-like service.
std::vector<FakeService> SensorServices();

enum class FakePairing { None, Passkey };

struct FakeDeviceConfig {
    std::string address;              // "C0:DE:5E:45:00:01"
    std::optional<std::string> name;  // absent: only the Alias is there
    std::string alias{};              // empty: the name, else the address with '-'
    std::vector<FakeService> services = SensorServices();
    std::shared_ptr<VirtualSensor> sensor{};  // may be null
    FakePairing pairing = FakePairing::None;  // asked of the agent on Connect
    bool resolveServices = true;              // false: ServicesResolved never comes
    bool known = false;                       // in GetManagedObjects from the start
    // Linked before the program started (e.g. it crashed): known, with its
    // GATT objects, and silent, as a connected peripheral stops advertising.
    bool connectedAtStart = false;
    int hangingConnects = 0;  // the first Connect calls wait until Disconnect cancels them
};

struct FakeWrite {
    std::vector<uint8_t> value;
    std::string type;  // the "type" option: "command", "request" or empty
    std::string uuid;  // of the characteristic written
};

class FakeDevice : private VirtualSensorHost {
public:
    FakeDevice(FakeBus& bus, FakeDeviceConfig config, std::string adapterPath);
    ~FakeDevice() override;
    FakeDevice(const FakeDevice&) = delete;
    FakeDevice& operator=(const FakeDevice&) = delete;

    const std::string& Path() const { return path_; }
    const FakeDeviceConfig& Config() const { return config_; }

    // Test controls. Out of range, scans miss it and a link drops.
    void SetInRange(bool inRange);
    // Link loss: one signal with Connected and ServicesResolved false.
    void DropLink();
    void FailWrites(bool fail);

    // Observation.
    bool Connected() const { return Locked(connected_); }
    bool Notifying() const;  // on the first notifying characteristic
    int ConnectCalls() const { return Locked(connectCalls_); }
    int DisconnectCalls() const { return Locked(disconnectCalls_); }
    int StartNotifyCalls() const { return Locked(startNotifyCalls_); }
    int StopNotifyCalls() const { return Locked(stopNotifyCalls_); }
    std::vector<FakeWrite> Writes() const { return Locked(writes_); }
    // What the agent answered on Connect, or "refused".
    std::string PairingAnswer() const { return Locked(pairingAnswer_); }

    // For the fake service, on its worker.
    bool InRange() const;
    bool Exported() const { return Locked(exported_); }
    void Export();                // the Device1 object, without a signal
    void LinkAtStart();           // as connectedAtStart asks, before org.bluez is taken
    void Announce(int16_t rssi);  // new: InterfacesAdded; known: RSSI changed by 8 dBm or more
    void ForgetRssi();            // discovery ended: RSSI invalidated
    void Unexport();              // bluetoothd leaves: objects gone, link down

private:
    struct Characteristic {
        std::string path;
        FakeCharacteristic definition;
        bool notifying = false;
        std::vector<uint8_t> value;
        std::unique_ptr<sdbus::IObject> object;
    };
    struct Service {
        std::string path;
        FakeService definition;
        std::unique_ptr<sdbus::IObject> object;
    };

    void SensorNotify(const SensorFrame& frame) override;
    void SensorLinkDropped() override;

    void BuildGatt();
    VariantMap DeviceProperties() const;
    void RegisterDevice();
    void ExportGatt();
    void RegisterCharacteristic(Characteristic& characteristic, const std::string& servicePath);
    void Connect(std::shared_ptr<sdbus::Result<>> reply);
    void Disconnect(std::shared_ptr<sdbus::Result<>> reply);
    bool Pair();
    void EndLink();
    void NotifyOn(Characteristic* characteristic, const std::vector<uint8_t>& value);
    Characteristic* ByUuid(const std::string& uuid);
    void StartNotify(Characteristic& characteristic);
    void StopNotify(Characteristic& characteristic);
    void WriteValue(Characteristic& characteristic, const std::vector<uint8_t>& value,
                    const VariantMap& options);

    // A copy of a model field, read under the model lock.
    template <typename T>
    T Locked(const T& field) const {
        std::lock_guard lock(bus_.mutex);
        return field;
    }

    FakeBus& bus_;
    const FakeDeviceConfig config_;
    const std::string adapterPath_;
    const std::string path_;

    // Guarded by bus_.mutex:
    bool inRange_ = true;
    bool exported_ = false;
    bool gattExported_ = false;
    bool connected_ = false;
    bool resolved_ = false;
    bool paired_ = false;
    bool failWrites_ = false;
    int connectCalls_ = 0;
    int disconnectCalls_ = 0;
    int startNotifyCalls_ = 0;
    int stopNotifyCalls_ = 0;
    std::vector<FakeWrite> writes_;
    std::string pairingAnswer_;
    std::optional<int16_t> rssi_;
    int hangsLeft_ = 0;
    std::shared_ptr<sdbus::Result<>> hangingConnect_;  // its reply, held until cancelled
    std::vector<Service> services_;
    std::vector<std::unique_ptr<Characteristic>> characteristics_;
    std::unique_ptr<sdbus::IObject> object_;
};

}  // namespace orv::test
