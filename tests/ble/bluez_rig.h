// A fresh bluetoothd on a private system bus and the sensor wrapper over
// the BlueZ backend, the wrapper started last.
#pragma once

#include <chrono>
#include <memory>

#include "ble/bluez/make_bluez_stack.h"
#include "tests/ble/ble_test_helpers.h"
#include "tests/ble/fake_bluez/fake_bluez.h"
#include "tests/ble/fake_bluez/private_system_bus.h"

struct BluezDaemon {
    orv::test::PrivateSystemBus bus;  // outlives every client of the bus
    orv::test::FakeBluez bluez;
};

// The daemon goes after the wrapper, a base constructed before it.
struct BluezRig : BluezDaemon, WrapperRig {
    explicit BluezRig(bool adapter = true) {
        if (adapter) {
            bluez.AddAdapter();
        }
    }

    static BluezTiming Timing(std::chrono::milliseconds connect = std::chrono::seconds(3),
                              std::chrono::milliseconds resolve = std::chrono::seconds(2)) {
        return {
            .connect = connect, .resolve = resolve, .adapterWait = std::chrono::milliseconds(100)};
    }
    bool Start(const BluezTiming& timing = Timing()) {
        if (!bus.ok() || !bluez.Start()) {
            return false;
        }
        using std::chrono::milliseconds;
        wrapper =
            MakeSensorWrapper(MakeBluezStack(timing), owner, {milliseconds(50), milliseconds(200)});
        wrapper->Start();
        return true;
    }
};

// The sensor's device as bluetoothd lists it, with a quick virtual sensor.
inline orv::test::FakeDeviceConfig SensorDevice(const std::string& name = "orvane-demo",
                                                const std::string& address = "C0:DE:5E:45:00:01") {
    return {.address = address, .name = name, .sensor = QuickSensor(name)};
}
