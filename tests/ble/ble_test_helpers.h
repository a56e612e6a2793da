// Helpers of the BLE tests: an owner that records its callbacks and a sensor
// that answers without delay.
#pragma once

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
    void OnBthConnectionState(int32_t state) override;
    void OnBthData(const uint8_t* data, uint32_t size) override;

    std::vector<int32_t> States() const;
    std::vector<std::vector<uint8_t>> Data() const;
    size_t CallCount() const;
    // True when the data received so far holds `frame`.
    bool Received(const std::vector<uint8_t>& frame) const;
    void Clear();

private:
    mutable std::mutex mutex_;  // guards states_, data_
    std::vector<int32_t> states_;
    std::vector<std::vector<uint8_t>> data_;
};

// A sensor that answers within a millisecond and swings in a few.
std::shared_ptr<VirtualSensor> QuickSensor(const std::string& name);

// A wrapper over `stack` set up as the session sets it up (filter "orvane",
// the sensor's service and characteristics), reporting to `owner`.
std::unique_ptr<BtfrGattWrapper> MakeSensorWrapper(std::unique_ptr<BleStack> stack,
                                                   BthCallback& owner,
                                                   const GattWrapperTiming& timing);
