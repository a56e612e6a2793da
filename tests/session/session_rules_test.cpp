// Rules of the session that no shot shows: its intervals, the echo lines, the
// raw-data loop and what it says aloud.
#include <atomic>
#include <fstream>

#include "common/speech.h"
#include "common/string_res.h"
#include "protocol/code_tables.h"
#include "simulator/e6_trusim_client.h"
#include "tests/session/session_fixture.h"

namespace orv::test {
namespace {

using namespace std::chrono_literals;

TEST(SessionTimingDefaults, ProductKeepsItsIntervals) {
    const Orvane::SessionTiming session;
    const GattWrapperTiming gatt;
    const E6TruSimTiming e6;
    const std::pair<std::chrono::milliseconds, std::chrono::milliseconds> rows[] = {
        {session.connCheckInterval, 2s},
        {session.freshLinkLimit, 3s},
        {session.aliveLinkLimit, 10s},
        {session.pingInterval, 20s},
        {session.lrSigDebounce, 500ms},
        {session.backSwingWait, 500ms},
        {gatt.tick, 1s},
        {gatt.discovery, 3s},
        {e6.reconnectPause, 1s},
        {e6.environmentThrottle, 1s},
        {e6.connectTimeLimit, 3s},
    };
    for (size_t i = 0; i < std::size(rows); ++i) {
        EXPECT_EQ(rows[i].first, rows[i].second) << "row " << i;
    }
    EXPECT_EQ(session.backSwingPasses, 8);
}

class SessionRules : public SessionTest {
protected:
    // Frames are handled in order: once the battery of `marker` is seen, every
    // frame sent before it has been handled.
    void SendAndSettle(const SensorFrame& frame, uint8_t marker) {
        sensor->SendFrame(frame);
        sensor->SendFrame(BatteryFrame(marker));
        ASSERT_TRUE(Eventually([&] { return ui.Saw("battery:" + std::to_string(marker)); }));
    }
};

TEST_F(SessionRules, EchoLogsOnlyWhatItDoesNotKnowAndRawBlocksAreAskedForUntilTheLastOne) {
    const struct {
        uint8_t event, result;
        const char* line;  // null: no echo line at all
    } rows[] = {
        {ORV_COMMAND_FW_VERSION, ORV_RES_SUCCESS, nullptr},
        {0x7E, ORV_RES_SUCCESS, "] Echo Unknown event: 126\n"},
        {ORV_COMMAND_FW_VERSION, 0x7E, "] Echo Unknown result: 126\n"},
        {0x7E, 0x7D, "] Echo event: 126, result: 125\n"},
    };
    StartManager();
    ASSERT_TRUE(WaitReady());
    uint8_t marker = 60;
    for (const auto& row : rows) {
        LogCapture log;
        SendAndSettle(EchoFrame(row.event, row.result), ++marker);
        const std::string text = log.Text();
        if (row.line == nullptr) {
            EXPECT_EQ(text.find("Echo"), std::string::npos) << text;
        } else {
            EXPECT_EQ(CountOf(text, row.line), 1u) << text;
        }
    }

    sensor->SetSilent(true);  // its own answers would be more raw blocks
    sensor->ClearWrittenFrames();
    LogCapture log;
    SendAndSettle(RawBlockFrame({}, 1, 0, false), ++marker);
    SendAndSettle(RawBlockFrame({}, 1, 1, false), ++marker);
    ASSERT_TRUE(Eventually([&] { return WrittenWithCode(ORV_COMMAND_RAW_DATA_REQ).size() == 2; }));
    EXPECT_EQ(WrittenWithCode(ORV_COMMAND_RAW_DATA_REQ)[0], (SensorFrame{0x15, 0x00, 0x15}));
    SendAndSettle(RawBlockFrame({}, 1, 2, true), ++marker);
    EXPECT_EQ(CountOf(log.Text(), "] Sensor raw data receiving finished.\n"), 1u);
    EXPECT_EQ(WrittenWithCode(ORV_COMMAND_RAW_DATA_REQ).size(), 2u);
}

// Counts what the voice plays.
class ClipCounter final : public orv::SpeechOutput {
public:
    explicit ClipCounter(std::atomic<int>* clips) : clips_(clips) {}
    void Play(const std::vector<int16_t>&, const std::atomic<bool>&) override { ++*clips_; }

private:
    std::atomic<int>* clips_;
};

// Each row's table holds only the text expected, so anything else
// the session says is empty and stays silent.
TEST_F(SessionRules, EachEventSpeaksItsOwnText) {
    const auto none = [](VirtualSensor&) {};
    const struct {
        const char* table;
        double distance;  // in the simulator's greeting
        std::function<void(VirtualSensor&)> act;
    } rows[] = {
        {"162\tconnected\n", 150, none},
        {"165\tlost\n", 150, [](VirtualSensor& s) { s.DropLink(); }},
        {"168\tlow\n", 150, [](VirtualSensor& s) { s.SendFrame(BatteryFrame(9)); }},
        {"172\tready\n", 150, [](VirtualSensor& s) { s.SendFrame(SimRawFrame({}, 2)); }},
        {"169\t%1$s\n171\tfeet\n", 10.0, none},
        {"169\t%1$s\n170\tyards\n", 10.5, none},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.table);
        TempDir lang;
        std::filesystem::create_directories(lang.path() / "en");
        std::ofstream(lang.path() / "en" / "strings.tsv") << row.table;
        ASSERT_TRUE(LoadLanguageModuleFrom(lang.path(), 1033));
        std::atomic<int> clips{0};
        ASSERT_TRUE(TTS_InitWithOutput(std::make_unique<ClipCounter>(&clips)));
        ui.Clear();
        emulator->SetDistanceToPin(row.distance);
        StartManager();
        ASSERT_TRUE(WaitReady());
        row.act(*sensor);
        EXPECT_TRUE(Eventually([&] { return clips.load() >= 1; }));
        TTS_DeInit();
        manager->Stop();
        manager.reset();
        sensor->ComeBack();
    }
    LoadLanguageModule(1033);
}

}  // namespace
}  // namespace orv::test
