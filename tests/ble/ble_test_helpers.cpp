#include "tests/ble/ble_test_helpers.h"

#include <algorithm>

void RecordingOwner::OnBthConnectionState(int32_t state) {
    std::lock_guard lock(mutex_);
    states_.push_back(state);
}

void RecordingOwner::OnBthData(const uint8_t* data, uint32_t size) {
    std::lock_guard lock(mutex_);
    data_.emplace_back(data, data + size);
}

std::vector<int32_t> RecordingOwner::States() const {
    std::lock_guard lock(mutex_);
    return states_;
}

std::vector<std::vector<uint8_t>> RecordingOwner::Data() const {
    std::lock_guard lock(mutex_);
    return data_;
}

size_t RecordingOwner::CallCount() const {
    std::lock_guard lock(mutex_);
    return data_.size() + states_.size();
}

bool RecordingOwner::Received(const std::vector<uint8_t>& frame) const {
    std::lock_guard lock(mutex_);
    return std::find(data_.begin(), data_.end(), frame) != data_.end();
}

void RecordingOwner::Clear() {
    std::lock_guard lock(mutex_);
    states_.clear();
    data_.clear();
}

std::shared_ptr<VirtualSensor> QuickSensor(const std::string& name) {
    VirtualSensorTiming timing;
    timing.answerDelay = std::chrono::milliseconds(1);
    timing.stepGap = std::chrono::milliseconds(5);
    return std::make_shared<VirtualSensor>(name, timing);
}

std::unique_ptr<BtfrGattWrapper> MakeSensorWrapper(std::unique_ptr<BleStack> stack,
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
