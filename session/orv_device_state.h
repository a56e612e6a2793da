#pragma once

#include <atomic>
#include <cstdint>
#include <mutex>
#include <string>

namespace Orvane {

// What the manager's threads share about the sensor link and the current swing.
struct OrvDeviceState {
    std::atomic<int32_t> stepState{1};   // last swing step; 2 = back swing reached
    std::atomic<int32_t> clubCode{0};    // club selected on the sensor, 0 = none
    std::atomic<int64_t> lastSendMs{0};  // when the last command went out; 0 = none outstanding
    std::atomic<bool> linkAlive{false};  // the sensor answered on this link
    std::atomic<uint32_t> battery{0};
    std::atomic<bool> lrSigPending{false};
    std::atomic<int32_t> lrSigCount{0};
    std::atomic<int32_t> hands{0};         // last handedness sent to the sensor
    std::atomic<bool> shotPending{false};  // a shot went to the simulator, not yet disarmed
    // The one recording-requested flag: set when the clip starts, cleared when it is shown.
    std::atomic<bool> recordingStarted{false};

    std::string GetFwVersion() const {
        std::lock_guard<std::mutex> lock(fwVersionMutex);
        return fwVersion;
    }
    void SetFwVersion(const std::string& version) {
        std::lock_guard<std::mutex> lock(fwVersionMutex);
        fwVersion = version;
    }

private:
    mutable std::mutex fwVersionMutex;  // guards fwVersion (receive thread writes, UI reads)
    std::string fwVersion;
};

}  // namespace Orvane
