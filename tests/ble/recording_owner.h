// A BthCallback that records every state and data callback, for tests.
#pragma once

#include <cstdint>
#include <mutex>
#include <vector>

#include "ble/bth_callback.h"

class RecordingOwner : public BthCallback {
public:
    void OnBthConnectionState(int32_t state) override;
    void OnBthData(const uint8_t* data, uint32_t size) override;

    std::vector<int32_t> States() const;
    std::vector<std::vector<uint8_t>> Data() const;
    size_t DataCount() const;
    size_t CallCount() const;
    // True when the data received so far holds `frame`.
    bool Received(const std::vector<uint8_t>& frame) const;
    // States seen after the first `skip` ones.
    std::vector<int32_t> StatesFrom(size_t skip) const;
    void Clear();

private:
    mutable std::mutex mutex_;  // guards states_, data_
    std::vector<int32_t> states_;
    std::vector<std::vector<uint8_t>> data_;
};
