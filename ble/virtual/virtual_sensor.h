// An in-process swing sensor: answers the protocol like the firmware, swings
// on its own in demo mode, and gives tests full control of what it sends.
// It sits behind a link (the virtual stack, or a fake BlueZ device) that
// carries its notifications. Every member is callable from any thread.
#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <mutex>
#include <random>
#include <string>
#include <vector>

#include "ble/timer_queue.h"
#include "ble/virtual/sensor_frames.h"
#include "ble/virtual/sensor_responder.h"

// The link the sensor sits behind. Implementations must not call back into
// the sensor from these.
class VirtualSensorHost {
public:
    virtual ~VirtualSensorHost() = default;
    // One notification to the central.
    virtual void SensorNotify(const SensorFrame& frame) = 0;
    // The radio link is gone (the sensor left the range).
    virtual void SensorLinkDropped() = 0;
};

struct VirtualSensorTiming {
    // Between a write and its answer, as over the air.
    std::chrono::milliseconds answerDelay{5};
    // Between swing steps: address, back swing, impact.
    std::chrono::milliseconds stepGap{700};
    // Between swings of the demo mode.
    std::chrono::milliseconds minSwingGap{5000};
    std::chrono::milliseconds maxSwingGap{10000};
};

class VirtualSensor {
public:
    explicit VirtualSensor(std::string name = "orvane-demo", VirtualSensorTiming timing = {},
                           uint32_t seed = 7);
    ~VirtualSensor();
    VirtualSensor(const VirtualSensor&) = delete;
    VirtualSensor& operator=(const VirtualSensor&) = delete;

    const std::string& Name() const { return name_; }

    // Link side.
    void Attach(VirtualSensorHost* host);
    // Once it returns no notification is under way; pending ones are dropped.
    void Detach();
    void OnWrite(const uint8_t* data, size_t size);
    bool InRange() const { return inRange_.load(); }

    // Demo mode: swings every minSwingGap..maxSwingGap while attached, now
    // and then a left/right signal, a low battery or an aborted swing.
    void SetAutoSwing(bool on);

    // Test controls.
    void TriggerSwing(const SwingValues& swing);  // steps 2 and 3, then the swing record
    void TriggerAbortedSwing();                   // steps 2 and 3, then an abort at step 3
    void SendFrame(const SensorFrame& frame);     // any bytes, as one notification
    void SendLrSignal(uint8_t side, uint8_t count);
    void SetSilent(bool silent);  // writes are still recorded, never answered
    void DropLink();              // leaves the range: the link drops
    void ComeBack();              // in range again
    // `count` notifications of `frame`, `perSecond` of them each second.
    void Flood(const SensorFrame& frame, int perSecond, int count);
    std::vector<SensorFrame> WrittenFrames() const;
    void ClearWrittenFrames();
    uint64_t NotificationsSent() const { return notified_.load(); }
    void SetBattery(uint8_t percent);
    void SetClub(uint8_t club);
    void SetFirmware(char major, char minor, char patch);
    uint8_t Club() const;
    uint8_t Battery() const;

private:
    void NotifyAfter(std::chrono::milliseconds delay, const SensorFrame& frame);
    void Deliver(const SensorFrame& frame);
    void ScheduleSwingSequence(const SensorFrame& finish);
    void ScheduleNextDemoEvent();
    void RunDemoEvent();

    const std::string name_;
    const VirtualSensorTiming timing_;

    mutable std::mutex mutex_;  // guards responder_, written_, random_, the demo and silent flags
    SensorResponder responder_;
    std::vector<SensorFrame> written_;
    std::mt19937 random_;
    bool autoSwing_ = false;
    TimerQueue::TimerId demoTimer_ = 0;
    bool silent_ = false;

    std::mutex hostMutex_;  // guards host_; held while a notification is handed over
    VirtualSensorHost* host_ = nullptr;

    std::atomic<bool> inRange_{true};
    std::atomic<uint64_t> notified_{0};
    TimerQueue clock_;  // answers, swing steps, demo events, floods
};
