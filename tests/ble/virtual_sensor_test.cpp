// The in-process sensor: its protocol answers byte for byte, the records it
// sends as the protocol parsers read them, and the test controls.
#include "ble/virtual/virtual_sensor.h"

#include <gtest/gtest.h>

#include <random>
#include <thread>

#include "ble/virtual/plausible_swing.h"
#include "ble/virtual/sensor_responder.h"
#include "protocol/code_tables.h"
#include "protocol/command_models.h"
#include "protocol/data_records.h"
#include "tests/support/test_support.h"

namespace {

using namespace std::chrono_literals;
using orv::test::Eventually;
using Bytes = std::vector<uint8_t>;

Bytes FrameOf(OrvCmdBaseModel&& model) {
    const bb* frame = model.MakeSendPacket();
    return Bytes(frame->data, frame->data + frame->size);
}

std::vector<Bytes> Ask(SensorResponder& responder, const Bytes& frame) {
    return responder.Answer(frame.data(), frame.size());
}

// Parses `frame` into a record of type R.
template <typename R, typename Check>
void WithRecord(const Bytes& frame, Check check) {
    bb* buffer = bb_new_copy(frame.data(), static_cast<uint32_t>(frame.size()));
    R record(buffer);
    record.ParseData();
    check(record);
    bb_free(&buffer);
}

TEST(SensorResponder, AnswersRequestsLikeTheFirmware) {
    SensorResponder sensor;
    EXPECT_EQ(Ask(sensor, FrameOf(OrvCmdFWVersionReqModel())),
              (std::vector<Bytes>{{0x06, 0x03, '1', '2', '0', 0x06 ^ 0x03 ^ '1' ^ '2' ^ '0'}}));
    sensor.SetFirmware('2', '0', '7');
    WithRecord<OrvDataFWVersionModel>(Ask(sensor, FrameOf(OrvCmdFWVersionReqModel()))[0],
                                      [](auto& r) { EXPECT_STREQ(r.version, "2.0.7"); });

    EXPECT_EQ(Ask(sensor, FrameOf(OrvCmdClubInfoReqModel())),
              (std::vector<Bytes>{{0x01, 0x01, 0x01, 0x01}}));  // club info: driver
    EXPECT_EQ(Ask(sensor, FrameOf(OrvCmdBatteryStateReqModel())),
              (std::vector<Bytes>{{0x04, 0x01, 87, 0x04 ^ 0x01 ^ 87}}));

    // Manual club select switches the club and is answered with its club info.
    EXPECT_EQ(Ask(sensor, FrameOf(OrvCmdManualClubSelectModel(8, -70, 50, 1000, 2200, 4.0f))),
              (std::vector<Bytes>{{0x01, 0x01, 0x08, 0x08}}));
    EXPECT_EQ(sensor.Club(), 8);
    EXPECT_EQ(Ask(sensor, FrameOf(OrvCmdClubInfoReqModel()))[0][2], 8);
    for (int club : {0, 18}) {
        EXPECT_EQ(Ask(sensor, FrameOf(OrvCmdManualClubSelectModel(club, 0, 0, 0, 0, 1.0f))),
                  (std::vector<Bytes>{{0x00, 0x02, 0x18, 0x11, 0x00 ^ 0x02 ^ 0x18 ^ 0x11}}));
    }
    EXPECT_EQ(sensor.Club(), 8);
}

TEST(SensorResponder, EchoesCommandsWithTheirResultCodes) {
    SensorResponder sensor;
    auto echo = [](uint8_t event, uint8_t result) {
        return std::vector<Bytes>{
            {0x00, 0x02, event, result, static_cast<uint8_t>(0x02 ^ event ^ result)}};
    };
    EXPECT_EQ(Ask(sensor, FrameOf(OrvCmdTimeSyncReqModel(10, 20, 30, 1))), echo(0x0D, 0x00));
    EXPECT_EQ(Ask(sensor, FrameOf(OrvCmdSystemSettingModel(0, 0, 1, 1))), echo(0x17, 0x00));
    EXPECT_EQ(Ask(sensor, FrameOf(OrvCmdStateSyncModel(2, 3, 0))), echo(0x0A, 0x00));
    EXPECT_EQ(Ask(sensor, FrameOf(OrvCmdHandsReqModel(2))), echo(0x1C, 0x00));
    EXPECT_EQ(sensor.Hands(), 2);
    EXPECT_EQ(Ask(sensor, FrameOf(OrvCmdModel(ORV_COMMAND_RESET))), echo(0x09, 0x10));
    EXPECT_EQ(Ask(sensor, {0x42, 0x00, 0x42}), echo(0x42, 0x01));        // unknown code
    EXPECT_EQ(Ask(sensor, {0x12, 0x00, 0x13}), echo(0x12, 0x03));        // checksum
    EXPECT_EQ(Ask(sensor, {0x12, 0x02, 0x00, 0x10}), echo(0x12, 0x11));  // length
    EXPECT_EQ(Ask(sensor, {0x12}), echo(0x12, 0x01));                    // too short
    EXPECT_TRUE(Ask(sensor, {}).empty());
}

TEST(SensorResponder, RawDataComesInBlocksUntilTheLastFlag) {
    SensorResponder sensor;
    sensor.SetRawBlockCount(3);
    const Bytes request = FrameOf(OrvCmdRawDataReqModel());
    for (int round = 0; round < 2; ++round) {
        for (uint16_t index = 0; index < 3; ++index) {
            const auto answers = Ask(sensor, request);
            ASSERT_EQ(answers.size(), 1u);
            ASSERT_EQ(answers[0].size(), 19u);
            WithRecord<OrvDataRawModel>(answers[0], [&](auto& r) {
                EXPECT_EQ(r.index, index);
                EXPECT_EQ(r.last != 0, index == 2);
                EXPECT_EQ(r.interval, 10);
                EXPECT_EQ(r.ax, 100 * index);
                EXPECT_EQ(r.ay, -50 * index);
            });
        }
    }
}

TEST(SensorFrames, SwingRecordsReadBackThroughTheProtocolParsers) {
    SwingValues swing;
    swing.headSpeed = 94.37;
    swing.clubPath = -3.2;
    swing.faceAngle = 1.5;
    swing.tempo = 3.1;
    swing.distance = 231.5;
    swing.sensorSpeed = 77.0;
    swing.releaseRatio = 80;
    const Bytes frame = SwingInfoFrame(swing);
    ASSERT_EQ(frame.size(), 20u);
    EXPECT_EQ(frame[0], 0x02);
    EXPECT_EQ(frame[1], 17);
    WithRecord<OrvDataSwingInfoModel>(frame, [](auto& r) {
        EXPECT_FLOAT_EQ(r.HeadSpeed, 94.37f);
        EXPECT_EQ(r.ClubPathDir, 5);
        EXPECT_FLOAT_EQ(r.ClubPath, 3.2f);
        EXPECT_EQ(r.FaceAngleDir, 4);
        EXPECT_FLOAT_EQ(r.FaceAngle, 1.5f);
        EXPECT_FLOAT_EQ(r.Tempo, 3.1f);
        EXPECT_FLOAT_EQ(r.SwingDistance, 231.5f);
        EXPECT_FLOAT_EQ(r.SensorSpeed, 77.0f);
        EXPECT_EQ(r.ClubReleaseRatio, 80);
        EXPECT_EQ(r.DistanceUnit, 1);
        EXPECT_EQ(r.SpeedUnit, 1);
    });
    WithRecord<OrvDataSimRawModel>(SimRawFrame(StepMotion(3), 3),
                                   [](auto& r) { EXPECT_EQ(r.step, 3); });
    WithRecord<OrvDataLRSig>(LrSignalFrame(1, 2), [](auto& r) { EXPECT_EQ(r.GetCount(), -2); });
    WithRecord<OrvDataSwingAbort>(SwingAbortFrame(3), [](auto& r) { EXPECT_EQ(r.step, 3); });

    std::mt19937 random(1);
    for (uint8_t club = 1; club <= 17; ++club) {
        SCOPED_TRACE(static_cast<int>(club));
        const SwingValues s = PlausibleSwing(club, random);
        if (club == 15) {
            EXPECT_GT(s.headSpeed, 2.0);
            EXPECT_LT(s.headSpeed, 3.0);
        } else {
            EXPECT_GT(s.headSpeed, 50.0);
            EXPECT_LT(s.headSpeed, 100.0);
            EXPECT_GT(s.distance, 5.0);  // below it the session drops the swing
        }
        EXPECT_LT(std::abs(s.clubPath), 15.0);
        EXPECT_LT(std::abs(s.faceAngle), 15.0);
    }
}

// Collects what the sensor sends.
class TestHost : public VirtualSensorHost {
public:
    void SensorNotify(const SensorFrame& frame) override {
        std::lock_guard lock(mutex_);
        frames_.push_back(frame);
    }
    void SensorLinkDropped() override { ++drops; }
    std::vector<Bytes> Frames() {
        std::lock_guard lock(mutex_);
        return frames_;
    }
    std::atomic<int> drops{0};

private:
    std::mutex mutex_;  // guards frames_
    std::vector<Bytes> frames_;
};

VirtualSensorTiming Quick() {
    VirtualSensorTiming timing;
    timing.answerDelay = 1ms;
    timing.stepGap = 2ms;
    timing.minSwingGap = 5ms;
    timing.maxSwingGap = 10ms;
    return timing;
}

TEST(VirtualSensor, AnswersSwingsAndTestControls) {
    VirtualSensor sensor("orvane-test", Quick());
    TestHost host;
    sensor.Attach(&host);
    const Bytes battery = FrameOf(OrvCmdBatteryStateReqModel());
    sensor.SetBattery(5);
    sensor.OnWrite(battery.data(), battery.size());
    ASSERT_TRUE(Eventually([&] { return host.Frames().size() == 1; }));
    EXPECT_EQ(host.Frames()[0], (Bytes{0x04, 0x01, 5, 0x04 ^ 0x01 ^ 5}));

    sensor.SetSilent(true);
    sensor.OnWrite(battery.data(), battery.size());
    sensor.SetSilent(false);
    EXPECT_EQ(sensor.WrittenFrames(), (std::vector<Bytes>{battery, battery}));

    SwingValues swing;
    swing.headSpeed = 80;
    swing.distance = 150;
    sensor.TriggerSwing(swing);
    sensor.TriggerAbortedSwing();
    ASSERT_TRUE(Eventually([&] { return host.Frames().size() == 7; }));
    std::vector<uint8_t> codes;
    for (const Bytes& frame : host.Frames()) {
        codes.push_back(frame[0]);
    }
    // The two sequences interleave by time; each keeps its own order.
    EXPECT_EQ(std::count(codes.begin(), codes.end(), ORV_DATA_SIM_RAW), 4);
    EXPECT_EQ(codes[1], ORV_DATA_SIM_RAW);
    EXPECT_EQ(host.Frames()[1][14], 2);  // step byte: address first
    EXPECT_EQ(std::count(codes.begin(), codes.end(), ORV_DATA_SWING_INFO), 1);
    EXPECT_EQ(std::count(codes.begin(), codes.end(), ORV_DATA_SWING_ABORT), 1);

    sensor.SendFrame({});
    sensor.SendFrame(Bytes(300, 0xAB));
    sensor.Flood({0x0F, 0x02, 0x00, 0x01, 0x0C}, 1000, 20);
    ASSERT_TRUE(Eventually([&] { return host.Frames().size() == 29; }));
    EXPECT_TRUE(host.Frames()[7].empty());
    EXPECT_EQ(host.Frames()[8].size(), 300u);

    sensor.DropLink();
    EXPECT_EQ(host.drops.load(), 1);
    EXPECT_FALSE(sensor.InRange());
    sensor.ComeBack();
    EXPECT_TRUE(sensor.InRange());

    sensor.Detach();
    sensor.OnWrite(battery.data(), battery.size());
    sensor.SendLrSignal(0, 1);
    std::this_thread::sleep_for(10ms);  // room for a stray notification to show up
    EXPECT_EQ(host.Frames().size(), 29u);
    EXPECT_EQ(sensor.NotificationsSent(), 29u);
}

TEST(VirtualSensor, DemoModeSwingsOnItsOwnWhileAttached) {
    VirtualSensor sensor("orvane-demo", Quick());
    sensor.SetClub(8);
    TestHost host;
    sensor.SetAutoSwing(true);
    std::this_thread::sleep_for(15ms);
    EXPECT_TRUE(host.Frames().empty());  // nobody attached: nothing scheduled
    sensor.Attach(&host);
    ASSERT_TRUE(Eventually([&] {
        const auto frames = host.Frames();
        return std::count_if(frames.begin(), frames.end(),
                             [](const Bytes& f) { return f[0] == ORV_DATA_SWING_INFO; }) >= 3;
    }));
    for (const Bytes& frame : host.Frames()) {
        if (frame[0] == ORV_DATA_SWING_INFO) {
            WithRecord<OrvDataSwingInfoModel>(frame, [](auto& r) {
                EXPECT_GT(r.HeadSpeed, 60.0f);  // a 7 iron
                EXPECT_LT(r.HeadSpeed, 85.0f);
            });
        }
    }
    sensor.SetAutoSwing(false);
    sensor.Detach();
}

TEST(VirtualSensor, WritesFromManyThreadsAreAllRecorded) {
    VirtualSensor sensor("orvane-test", Quick());
    TestHost host;
    sensor.Attach(&host);
    const Bytes request = FrameOf(OrvCmdClubInfoReqModel());
    std::vector<std::thread> writers;
    for (int t = 0; t < 4; ++t) {
        writers.emplace_back([&] {
            for (int i = 0; i < 50; ++i) {
                sensor.OnWrite(request.data(), request.size());
            }
        });
    }
    for (auto& writer : writers) {
        writer.join();
    }
    EXPECT_EQ(sensor.WrittenFrames().size(), 200u);
    ASSERT_TRUE(Eventually([&] { return host.Frames().size() == 200; }));
    sensor.Detach();
}

}  // namespace
