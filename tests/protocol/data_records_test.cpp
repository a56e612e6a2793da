#include "protocol/data_records.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "common/debug_log.h"
#include "protocol/record_dispatch.h"
#include "tests/support/test_support.h"

namespace {

// A frame around `payload` with its length and XOR checksum.
struct Frame {
    explicit Frame(uint8_t type, std::vector<uint8_t> payload) {
        std::vector<uint8_t> bytes{type, static_cast<uint8_t>(payload.size())};
        bytes.insert(bytes.end(), payload.begin(), payload.end());
        uint8_t sum = 0;
        for (uint8_t b : bytes) {
            sum ^= b;
        }
        bytes.push_back(sum);
        buffer = bb_new_copy(bytes.data(), static_cast<uint32_t>(bytes.size()));
    }
    ~Frame() { bb_free(&buffer); }
    bb* buffer;
};

// `Record` parsed from a frame of `type` around `payload`.
template <typename Record>
struct Parsed {
    Parsed(uint8_t type, std::vector<uint8_t> payload) : frame(type, std::move(payload)) {
        record.ParseData();
    }
    Frame frame;
    Record record{frame.buffer};
    Record* operator->() { return &record; }
};

TEST(DataRecords, SwingInfoScalingAndUnsignedFields) {
    Frame frame(ORV_DATA_SWING_INFO, {
                                         0x01,        // distance unit
                                         0x03, 0xE8,  // swing distance 1000 -> 10.0
                                         0x02,        // speed unit
                                         0xFF, 0xFF,  // head speed 65535 -> 655.35
                                         25,          // tempo -> 2.5
                                         0x05,        // path direction (negative)
                                         0x00, 0x2D,  // path 45 -> 4.5
                                         0x01,        // face direction
                                         0x00, 0x0C,  // face 12 -> 1.2
                                         0x03,        // swing type
                                         0x27, 0x10,  // sensor speed 10000 -> 100.0
                                         0xC8,        // release ratio 200
                                     });
    OrvDataSwingInfoModel record(frame.buffer);
    EXPECT_TRUE(record.ParseData());
    EXPECT_EQ(record.type, 2);
    EXPECT_EQ(record.length, 17);
    EXPECT_EQ(record.DistanceUnit, 1);
    EXPECT_FLOAT_EQ(record.SwingDistance, 10.0f);
    EXPECT_EQ(record.SpeedUnit, 2);
    EXPECT_EQ(record.HeadSpeed, static_cast<float>(65535 / 100.0));
    EXPECT_EQ(record.Tempo, static_cast<float>(25 / 10.0));
    EXPECT_EQ(record.ClubPathDir, 5);
    EXPECT_FLOAT_EQ(record.ClubPath, 4.5f);
    EXPECT_EQ(record.FaceAngleDir, 1);
    EXPECT_FLOAT_EQ(record.FaceAngle, 1.2f);
    EXPECT_EQ(record.SwingType, 3);
    EXPECT_FLOAT_EQ(record.SensorSpeed, 100.0f);
    EXPECT_EQ(record.ClubReleaseRatio, 200);
    EXPECT_EQ(record.checksum, frame.buffer->data[19]);
    EXPECT_EQ(frame.buffer->pos, 20);
}

TEST(DataRecords, SmallRecordsAndTheVersionText) {
    Parsed<OrvDataEchoModel> echo(ORV_DATA_ECHO, {0x12, 0x06});
    EXPECT_EQ(echo->event, 0x12);
    EXPECT_EQ(echo->result, 0x06);
    EXPECT_EQ((Parsed<OrvDataClubInfoModel>(ORV_DATA_CLUB_INFO, {12})->club), 12);
    EXPECT_EQ((Parsed<OrvDataBatteryStateModel>(ORV_DATA_STATE, {9})->battery), 9);
    EXPECT_STREQ((Parsed<OrvDataFWVersionModel>(ORV_DATA_FW_VERSION, {'2', '0', '7'})->version),
                 "2.0.7");
    EXPECT_EQ((Parsed<OrvDataSwingAbort>(ORV_DATA_SWING_ABORT, {3})->step), 3);
}

TEST(DataRecords, RawSamplesAreSignedImpactValuesUnsigned) {
    std::vector<uint8_t> payload{0xFF, 0x9C, 0x00, 0x01, 0x80, 0x00, 0x7F, 0xFF,
                                 0,    0,    0xFF, 0xFF, 5,    0x01, 0x02, 0x01};
    Parsed<OrvDataRawModel> raw(ORV_DATA_RAW, payload);
    EXPECT_EQ(raw->ax, -100);
    EXPECT_EQ(raw->ay, 1);
    EXPECT_EQ(raw->az, -32768);
    EXPECT_EQ(raw->gx, 32767);
    EXPECT_EQ(raw->gz, -1);
    EXPECT_EQ(raw->interval, 5);
    EXPECT_EQ(raw->index, 0x0102);
    EXPECT_EQ(raw->last, 1);

    Parsed<OrvDataImpactRawModel> impact(ORV_DATA_IMPACT_RAW, payload);
    EXPECT_EQ(impact->values[0], 65436);
    EXPECT_EQ(impact->values[5], 65535);
    EXPECT_EQ(impact->extra, 5);
    EXPECT_EQ(impact.frame.buffer->pos, 19);  // three trailing bytes skipped, then the checksum

    Parsed<OrvDataSimRawModel> simRaw(ORV_DATA_SIM_RAW,
                                      {0xFF, 0x9C, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 2, 9, 9, 9});
    EXPECT_EQ(simRaw->ax, -100);
    EXPECT_EQ(simRaw->step, 2);
    EXPECT_EQ(simRaw->checksum, simRaw.frame.buffer->data[18]);

    Parsed<OrvDataSimResultModel> sim(
        ORV_DATA_SIM_RESULT,
        {1, 2, 3, 4, 5, 6, 0xEE, 0xEE, 0xEE, 0xEE, 0xEE, 0xEE, 0xEE, 0xEE, 0xEE, 0xEE, 0xEE});
    EXPECT_EQ(sim->values[5], 6);
    EXPECT_EQ(sim->checksum, sim.frame.buffer->data[19]);
}

TEST(DataRecords, LeftRightCountRule) {
    struct Case {
        uint8_t side, count;
        int expected;
    };
    for (const Case& c : {Case{1, 0, -1}, Case{0, 3, 3}, Case{2, 3, 3}, Case{1, 2, -2},
                          Case{0, 0, 1}, Case{255, 255, 255}}) {
        EXPECT_EQ(Parsed<OrvDataLRSig>(ORV_DATA_LR_SIG, {c.side, c.count})->GetCount(), c.expected)
            << int(c.side) << "," << int(c.count);
    }
}

TEST(DataRecords, ShortAndEmptyFramesParseIntoZeros) {
    const uint8_t shortSwing[] = {0x02, 0x11, 0x01};
    bb* buffer = bb_new_copy(shortSwing, sizeof shortSwing);
    OrvDataSwingInfoModel record(buffer);
    record.ParseData();
    EXPECT_EQ(record.DistanceUnit, 1);
    EXPECT_EQ(record.HeadSpeed, 0.0f);
    EXPECT_EQ(record.ClubReleaseRatio, 0);
    EXPECT_EQ(record.checksum, 0);
    bb_free(&buffer);

    bb* empty = bb_new_copy(nullptr, 0);
    OrvDataFWVersionModel version(empty);
    version.ParseData();
    // Three zero characters: the text is "\0.\0.\0", empty as a C string.
    EXPECT_EQ(version.version[0], '\0');
    EXPECT_EQ(version.version[1], '.');
    EXPECT_EQ(version.version[4], '\0');
    bb_free(&empty);
}

TEST(DataRecords, DispatchBuildsTheRecordOfEachKnownType) {
    int visited = 0;
    for (int code = 0; code < 256; ++code) {
        Frame frame(static_cast<uint8_t>(code), std::vector<uint8_t>(17, 1));
        const bool known = orv::VisitDataRecord(frame.buffer, [&](auto& record) {
            EXPECT_EQ(record.type, code);
            ++visited;
        });
        EXPECT_EQ(known, OrvGetDataCodeDef(static_cast<uint8_t>(code)) != nullptr) << code;
    }
    EXPECT_EQ(visited, 11);
}

TEST(DataRecords, SwingInfoDumpOnlyWithTheLogOn) {
    Parsed<OrvDataSwingInfoModel> record(ORV_DATA_SWING_INFO, std::vector<uint8_t>(17, 0));
    orv::test::StdoutCapture out;
    record->ToLog();
    EXPECT_EQ(out.Text(), "");
    ShowLog(true, false);
    record->ToLog();
    ShowLog(false, false);
    const std::string text = out.Text();
    EXPECT_NE(text.find("[OrvDataSwingInfoModel::ToLog("), std::string::npos);
    EXPECT_NE(
        text.find("\n============= SwingInfo =============\nDistance unit: 0\nSwing distance: "
                  "0.000000\n"),
        std::string::npos);
    EXPECT_NE(text.find("ClubReleaseRatio: 0\n=====================================\n\n"),
              std::string::npos);
}

}  // namespace
