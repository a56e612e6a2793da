// Helpers of the BLE tests: an owner that records its callbacks, a sensor
// that answers without delay, and the wrapper set up as the session does.
#pragma once

#include <algorithm>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "ble/btfr_gatt_wrapper.h"
#include "ble/bth_callback.h"
#include "ble/virtual/virtual_sensor.h"
#include "tests/support/test_support.h"

using orv::test::LogCapture;

// The firmware-version request and the quick sensor's answer to it.
inline const std::vector<uint8_t> kFirmwareRequest = {0x12, 0x00, 0x12};
inline const std::vector<uint8_t> kFirmwareAnswer = {0x06, 0x03, '1',
                                                     '2',  '0',  0x06 ^ 0x03 ^ '1' ^ '2' ^ '0'};

// Records every state and data callback.
class RecordingOwner : public BthCallback {
public:
    void OnBthConnectionState(int32_t state) override {
        std::lock_guard lock(mutex_);
        states_.push_back(state);
    }
    void OnBthData(const uint8_t* data, uint32_t size) override {
        std::lock_guard lock(mutex_);
        data_.emplace_back(data, data + size);
    }
    std::vector<int32_t> States() const {
        std::lock_guard lock(mutex_);
        return states_;
    }
    std::vector<std::vector<uint8_t>> Data() const {
        std::lock_guard lock(mutex_);
        return data_;
    }
    size_t CallCount() const { return States().size() + Data().size(); }
    bool Received(const std::vector<uint8_t>& frame) const {
        const auto data = Data();
        return std::find(data.begin(), data.end(), frame) != data.end();
    }
    void Clear() {
        std::lock_guard lock(mutex_);
        states_.clear();
        data_.clear();
    }

private:
    mutable std::mutex mutex_;  // guards states_, data_
    std::vector<int32_t> states_;
    std::vector<std::vector<uint8_t>> data_;
};

// The owner and the wrapper reporting to it, stopped before anything else
// of the test goes.
struct WrapperRig {
    RecordingOwner owner;  // outlives the wrapper
    std::unique_ptr<BtfrGattWrapper> wrapper;

    ~WrapperRig() { StopWrapper(); }
    void StopWrapper() {
        if (wrapper) {
            wrapper->Stop();
        }
    }
    bool WaitState(int32_t state) {
        return orv::test::Eventually([&] { return wrapper->GetState() == state; });
    }
    bool WaitStates(const std::vector<int32_t>& states) {
        return orv::test::Eventually([&] { return owner.States() == states; });
    }
    // The sensor answers the firmware request over the link.
    bool Answers() {
        return wrapper->WriteCharacteristic(kFirmwareRequest.data(), 3) &&
               orv::test::Eventually([&] { return owner.Received(kFirmwareAnswer); });
    }
};

// A sensor that answers within a millisecond and swings in a few.
inline std::shared_ptr<VirtualSensor> QuickSensor(const std::string& name) {
    using std::chrono::milliseconds;
    return std::make_shared<VirtualSensor>(
        name, VirtualSensorTiming{.answerDelay = milliseconds(1), .stepGap = milliseconds(5)});
}

// A wrapper over `stack` with the session's filter "orvane" and the
// sensor's service and characteristics, reporting to `owner`.
inline std::unique_ptr<BtfrGattWrapper> MakeSensorWrapper(std::unique_ptr<BleStack> stack,
                                                          BthCallback& owner,
                                                          const GattWrapperTiming& timing) {
    auto wrapper = std::make_unique<BtfrGattWrapper>(std::move(stack));
    wrapper->SetOwner(&owner);
    wrapper->SetDeviceNameFilter("orvane");
    wrapper->SetServiceUuid(GattUuid::Parse("{6e400001-b5a3-f393-e0a9-e50e24dcca9e}"));
    wrapper->SetCharacteristicUuids(GattUuid::Parse("{6e400002-b5a3-f393-e0a9-e50e24dcca9e}"),
                                    GattUuid::Parse("{6e400003-b5a3-f393-e0a9-e50e24dcca9e}"));
    wrapper->SetTiming(timing);
    return wrapper;
}
