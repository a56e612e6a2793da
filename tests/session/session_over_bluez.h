// A session test over the BlueZ backend: a fake bluetoothd on a private
// system bus, whose one device carries the test's virtual sensor.
#pragma once

#include <chrono>

#include "ble/bluez/make_bluez_stack.h"
#include "tests/ble/fake_bluez/fake_bluez.h"
#include "tests/ble/fake_bluez/private_system_bus.h"

namespace orv::test {

template <typename Session>
class SessionOverBluezOf : public Session {
protected:
    // Adds the adapter and the sensor's device, starts bluetoothd and points
    // the manager's configuration at the BlueZ backend.
    bool StartBluez() {
        if (!bus.ok()) {
            return false;
        }
        bluez.AddAdapter();
        FakeDeviceConfig device;
        device.address = "C0:DE:5E:45:00:01";
        device.name = "orvane-demo";
        device.sensor = this->sensor;
        bluez.AddDevice(device);
        this->config.makeBleStack = [] {
            BluezTiming timing;
            timing.adapterWait = std::chrono::milliseconds(100);
            return MakeBluezStack(timing);
        };
        return bluez.Start();
    }

    PrivateSystemBus bus;  // outlives every client of the bus
    FakeBluez bluez;
};

}  // namespace orv::test
