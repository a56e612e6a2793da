#include "ble/virtual/virtual_sensor.h"

#include "ble/virtual/plausible_swing.h"

namespace {

constexpr uint8_t kStepAddress = 2;
constexpr uint8_t kStepBackSwing = 3;
constexpr uint8_t kLowBatteryPercent = 7;

}  // namespace

VirtualSensor::VirtualSensor(std::string name, VirtualSensorTiming timing, uint32_t seed)
    : name_(std::move(name)), timing_(timing), random_(seed) {}

VirtualSensor::~VirtualSensor() {
    clock_.Stop();
}

void VirtualSensor::Attach(VirtualSensorHost* host) {
    {
        std::lock_guard lock(hostMutex_);
        host_ = host;
    }
    bool demo = false;
    {
        std::lock_guard lock(mutex_);
        demo = autoSwing_;
    }
    if (demo) {
        ScheduleNextDemoEvent();
    }
}

void VirtualSensor::Detach() {
    {
        std::lock_guard lock(hostMutex_);
        host_ = nullptr;
    }
    clock_.CancelAll();
}

void VirtualSensor::OnWrite(const uint8_t* data, size_t size) {
    std::vector<SensorFrame> answers;
    {
        std::lock_guard lock(mutex_);
        written_.emplace_back(data, data + size);
        if (silent_) {
            return;
        }
        answers = responder_.Answer(data, size);
    }
    for (const SensorFrame& answer : answers) {
        NotifyAfter(timing_.answerDelay, answer);
    }
}

void VirtualSensor::NotifyAfter(std::chrono::milliseconds delay, const SensorFrame& frame) {
    clock_.PostAfter(delay, [this, frame] { Deliver(frame); });
}

void VirtualSensor::Deliver(const SensorFrame& frame) {
    std::lock_guard lock(hostMutex_);
    if (host_ != nullptr) {
        host_->SensorNotify(frame);
        notified_.fetch_add(1);
    }
}

void VirtualSensor::SetAutoSwing(bool on) {
    bool attached = false;
    {
        std::lock_guard lock(hostMutex_);
        attached = host_ != nullptr;
    }
    {
        std::lock_guard lock(mutex_);
        if (autoSwing_ == on) {
            return;
        }
        autoSwing_ = on;
        if (!on) {
            clock_.Cancel(demoTimer_);
            return;
        }
    }
    if (attached) {
        ScheduleNextDemoEvent();
    }
}

void VirtualSensor::ScheduleNextDemoEvent() {
    std::lock_guard lock(mutex_);
    std::uniform_int_distribution<long> gap(timing_.minSwingGap.count(),
                                            timing_.maxSwingGap.count());
    clock_.Cancel(demoTimer_);
    demoTimer_ =
        clock_.PostAfter(std::chrono::milliseconds(gap(random_)), [this] { RunDemoEvent(); });
}

void VirtualSensor::RunDemoEvent() {
    {
        std::lock_guard lock(hostMutex_);
        if (host_ == nullptr) {
            return;  // detached: the next Attach starts a new series
        }
    }
    int pick = 0;
    SwingValues swing;
    {
        std::lock_guard lock(mutex_);
        if (!autoSwing_) {
            return;
        }
        pick = std::uniform_int_distribution<int>(0, 9)(random_);
        swing = PlausibleSwing(responder_.Club(), random_);
    }
    switch (pick) {
        case 0:
            SendLrSignal(static_cast<uint8_t>(swing.clubPath < 0 ? 1 : 0), 1);
            break;
        case 1:
            TriggerAbortedSwing();
            break;
        case 2:
            SendFrame(BatteryFrame(kLowBatteryPercent));
            break;
        default:
            TriggerSwing(swing);
            break;
    }
    ScheduleNextDemoEvent();
}

void VirtualSensor::ScheduleSwingSequence(const SensorFrame& finish) {
    NotifyAfter(std::chrono::milliseconds(0), SimRawFrame(StepMotion(kStepAddress), kStepAddress));
    NotifyAfter(timing_.stepGap, SimRawFrame(StepMotion(kStepBackSwing), kStepBackSwing));
    NotifyAfter(2 * timing_.stepGap, finish);
}

void VirtualSensor::TriggerSwing(const SwingValues& swing) {
    ScheduleSwingSequence(SwingInfoFrame(swing));
}

void VirtualSensor::TriggerAbortedSwing() {
    ScheduleSwingSequence(SwingAbortFrame(kStepBackSwing));
}

void VirtualSensor::SendFrame(const SensorFrame& frame) {
    NotifyAfter(std::chrono::milliseconds(0), frame);
}

void VirtualSensor::SendLrSignal(uint8_t side, uint8_t count) {
    SendFrame(LrSignalFrame(side, count));
}

void VirtualSensor::SetSilent(bool silent) {
    std::lock_guard lock(mutex_);
    silent_ = silent;
}

void VirtualSensor::DropLink() {
    inRange_.store(false);
    std::lock_guard lock(hostMutex_);
    if (host_ != nullptr) {
        host_->SensorLinkDropped();
    }
}

void VirtualSensor::ComeBack() {
    inRange_.store(true);
}

void VirtualSensor::Flood(const SensorFrame& frame, int perSecond, int count) {
    const int rate = perSecond > 0 ? perSecond : 1;
    for (int i = 0; i < count; ++i) {
        NotifyAfter(std::chrono::milliseconds(int64_t{i} * 1000 / rate), frame);
    }
}

std::vector<SensorFrame> VirtualSensor::WrittenFrames() const {
    std::lock_guard lock(mutex_);
    return written_;
}

void VirtualSensor::ClearWrittenFrames() {
    std::lock_guard lock(mutex_);
    written_.clear();
}

void VirtualSensor::SetBattery(uint8_t percent) {
    std::lock_guard lock(mutex_);
    responder_.SetBattery(percent);
}

void VirtualSensor::SetClub(uint8_t club) {
    std::lock_guard lock(mutex_);
    responder_.SetClub(club);
}

void VirtualSensor::SetFirmware(char major, char minor, char patch) {
    std::lock_guard lock(mutex_);
    responder_.SetFirmware(major, minor, patch);
}

uint8_t VirtualSensor::Club() const {
    std::lock_guard lock(mutex_);
    return responder_.Club();
}

uint8_t VirtualSensor::Battery() const {
    std::lock_guard lock(mutex_);
    return responder_.Battery();
}
