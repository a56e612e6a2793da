#include "ble/virtual/sensor_frames.h"

#include <algorithm>
#include <cmath>

#include "protocol/code_tables.h"
#include "protocol/command_models.h"

namespace {

// The command models already know the frame layout; the sensor's frames only
// differ in carrying a data-type code.
class SensorFrameModel final : public OrvCmdBaseModel {
public:
    SensorFrameModel(uint8_t dataType, const std::vector<uint8_t>& payload)
        : OrvCmdBaseModel(dataType), payload_(payload) {}

protected:
    void MakePacket(bb* buffer) override {
        for (uint8_t byte : payload_) {
            bb_put(buffer, byte);
        }
    }
    int GetLength() override { return static_cast<int>(payload_.size()); }

private:
    const std::vector<uint8_t>& payload_;
};

class Payload {
public:
    Payload& U8(uint8_t value) {
        bytes.push_back(value);
        return *this;
    }
    Payload& U16(uint16_t value) {
        bytes.push_back(static_cast<uint8_t>(value >> 8));
        bytes.push_back(static_cast<uint8_t>(value));
        return *this;
    }
    Payload& S16(int16_t value) { return U16(static_cast<uint16_t>(value)); }
    Payload& Motion(const MotionSample& m) {
        return S16(m.ax).S16(m.ay).S16(m.az).S16(m.gx).S16(m.gy).S16(m.gz);
    }
    // Unsigned fixed point: value * scale, rounded and kept inside 16 bits.
    Payload& Scaled16(double value, double scale) {
        return U16(static_cast<uint16_t>(std::clamp(std::lround(value * scale), 0L, 65535L)));
    }
    Payload& Scaled8(double value, double scale) {
        return U8(static_cast<uint8_t>(std::clamp(std::lround(value * scale), 0L, 255L)));
    }
    Payload& Angle(double degrees) {
        U8(degrees < 0 ? kDirectionNegative : kDirectionPositive);
        return Scaled16(std::fabs(degrees), 10.0);
    }

    std::vector<uint8_t> bytes;
};

}  // namespace

SensorFrame MakeSensorFrame(uint8_t code, const std::vector<uint8_t>& payload) {
    SensorFrameModel model(code, payload);
    const bb* frame = model.MakeSendPacket();
    return SensorFrame(frame->data, frame->data + frame->size);
}

SensorFrame EchoFrame(uint8_t event, uint8_t result) {
    return MakeSensorFrame(ORV_DATA_ECHO, {event, result});
}

SensorFrame ClubInfoFrame(uint8_t club) {
    return MakeSensorFrame(ORV_DATA_CLUB_INFO, {club});
}

SensorFrame BatteryFrame(uint8_t percent) {
    return MakeSensorFrame(ORV_DATA_STATE, {percent});
}

SensorFrame FirmwareFrame(char major, char minor, char patch) {
    return MakeSensorFrame(
        ORV_DATA_FW_VERSION,
        {static_cast<uint8_t>(major), static_cast<uint8_t>(minor), static_cast<uint8_t>(patch)});
}

SensorFrame SwingInfoFrame(const SwingValues& swing) {
    Payload p;
    p.U8(swing.distanceUnit).Scaled16(swing.distance, 100.0);
    p.U8(swing.speedUnit).Scaled16(swing.headSpeed, 100.0);
    p.Scaled8(swing.tempo, 10.0);
    p.Angle(swing.clubPath).Angle(swing.faceAngle);
    p.U8(swing.swingType).Scaled16(swing.sensorSpeed, 100.0);
    p.U8(swing.releaseRatio);
    return MakeSensorFrame(ORV_DATA_SWING_INFO, p.bytes);
}

SensorFrame SimRawFrame(const MotionSample& motion, uint8_t step) {
    Payload p;
    p.Motion(motion).U8(step).U8(0).U8(0).U8(0);
    return MakeSensorFrame(ORV_DATA_SIM_RAW, p.bytes);
}

SensorFrame SwingAbortFrame(uint8_t step) {
    return MakeSensorFrame(ORV_DATA_SWING_ABORT, {step});
}

SensorFrame RawBlockFrame(const MotionSample& motion, uint8_t interval, uint16_t index, bool last) {
    Payload p;
    p.Motion(motion).U8(interval).U16(index).U8(last ? 1 : 0);
    return MakeSensorFrame(ORV_DATA_RAW, p.bytes);
}

SensorFrame LrSignalFrame(uint8_t side, uint8_t count) {
    return MakeSensorFrame(ORV_DATA_LR_SIG, {side, count});
}
