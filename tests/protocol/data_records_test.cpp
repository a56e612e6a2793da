#include "protocol/data_records.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

#include "common/debug_log.h"
#include "protocol/code_tables.h"
#include "protocol/record_dispatch.h"
#include "tests/support/test_support.h"

namespace {

// `Record` parsed from a frame of `type` around `payload`, with its length and XOR checksum.
template <typename Record>
struct Parsed {
    Parsed(uint8_t type, const std::vector<uint8_t>& payload) {
        std::vector<uint8_t> bytes{type, static_cast<uint8_t>(payload.size())};
        bytes.insert(bytes.end(), payload.begin(), payload.end());
        uint8_t sum = 0;
        for (uint8_t b : bytes) {
            sum ^= b;
        }
        bytes.push_back(sum);
        buffer = bb_new_copy(bytes.data(), static_cast<uint32_t>(bytes.size()));
        record.emplace(buffer);
        EXPECT_TRUE(record->ParseData());
    }
    ~Parsed() { bb_free(&buffer); }
    Record* operator->() { return &*record; }
    bb* buffer;
    std::optional<Record> record;
};

TEST(DataRecords, SwingInfoScalingUnsignedFieldsAndItsDumpWithTheLogOnOnly) {
    Parsed<OrvDataSwingInfoModel> swing(ORV_DATA_SWING_INFO,
                                        {
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
    EXPECT_EQ(swing->type, 2);
    EXPECT_EQ(swing->length, 17);
    EXPECT_EQ(swing->checksum, swing.buffer->data[19]);
    EXPECT_EQ(swing.buffer->pos, 20);
    orv::test::StdoutCapture out;
    ShowLog(true, false);
    swing->ToLog();
    ShowLog(false, false);
    const std::string text = out.Text();
    EXPECT_NE(text.find("[OrvDataSwingInfoModel::ToLog("), std::string::npos);
    EXPECT_EQ(text.substr(text.find(")] ") + 3),
              "\n============= SwingInfo =============\nDistance unit: 1\nSwing distance: "
              "10.000000\nSpeedUnit: 2\nHeadSpeed: 655.349976\nTempo: 2.500000\nClubPathDir: 5\n"
              "ClubPath: 4.500000\nFaceAngleDir: 1\nFaceAngle: 1.200000\nSwingType: 3\n"
              "SensorSpeed: 100.000000\nClubReleaseRatio: 200\n"
              "=====================================\n\n");
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
    // Left/right count: the left side counts down, a zero count is one.
    const int counts[][3] = {{1, 0, -1}, {0, 3, 3}, {2, 3, 3},
                             {1, 2, -2}, {0, 0, 1}, {255, 255, 255}};
    for (const auto& [side, count, expected] : counts) {
        EXPECT_EQ(
            (Parsed<OrvDataLRSig>(ORV_DATA_LR_SIG, {uint8_t(side), uint8_t(count)})->GetCount()),
            expected)
            << side << "," << count;
    }
}

TEST(DataRecords, RawSamplesAreSignedImpactValuesUnsigned) {
    const std::vector<uint8_t> payload{0xFF, 0x9C, 0x00, 0x01, 0x80, 0x00, 0x7F, 0xFF,
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
    EXPECT_EQ(impact.buffer->pos, 19);  // three trailing bytes skipped, then the checksum

    Parsed<OrvDataSimRawModel> simRaw(ORV_DATA_SIM_RAW,
                                      {0xFF, 0x9C, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 2, 9, 9, 9});
    EXPECT_EQ(simRaw->ax, -100);
    EXPECT_EQ(simRaw->step, 2);
    EXPECT_EQ(simRaw->checksum, simRaw.buffer->data[18]);

    Parsed<OrvDataSimResultModel> sim(
        ORV_DATA_SIM_RESULT,
        {1, 2, 3, 4, 5, 6, 0xEE, 0xEE, 0xEE, 0xEE, 0xEE, 0xEE, 0xEE, 0xEE, 0xEE, 0xEE, 0xEE});
    EXPECT_EQ(sim->values[5], 6);
    EXPECT_EQ(sim->checksum, sim.buffer->data[19]);
}

// Each data type reaches the record of its own layout, and no other type reaches one.
TEST(DataRecords, DispatchBuildsTheRecordOfEachKnownType) {
    int visited = 0;
    for (int code = 0; code < 256; ++code) {
        const std::vector<uint8_t> bytes(20, 1);
        bb* frame = bb_new_copy(bytes.data(), 20);
        frame->data[0] = static_cast<uint8_t>(code);
        const bool known = orv::VisitDataRecord(frame, [&](auto& record) {
            EXPECT_EQ(record.type, code);
            ++visited;
        });
        EXPECT_EQ(known, OrvGetDataCodeDef(static_cast<uint8_t>(code)) != nullptr) << code;
        bb_free(&frame);
    }
    EXPECT_EQ(visited, 11);
}

}  // namespace
