#include "common/speech.h"

#include <gtest/gtest.h>

#include <atomic>
#include <mutex>
#include <thread>
#include <vector>

#include "common/debug_log.h"
#include "common/settings.h"
#include "common/string_res.h"
#include "tests/common/env_var.h"
#include "tests/support/test_support.h"

namespace {

using orv::test::Eventually;
using Samples = std::vector<int16_t>;

// Stands in for the sound server: records each announcement, and while the
// gate is closed holds it "playing" until the voice asks to stop.
struct Played {
    std::atomic<bool> gateOpen{true}, playing{false}, stoppedEarly{false};
    std::mutex mutex;  // guards clips
    std::vector<Samples> clips;

    size_t Count() {
        std::lock_guard lock(mutex);
        return clips.size();
    }
};

class RecordingOutput final : public orv::SpeechOutput {
public:
    explicit RecordingOutput(std::shared_ptr<Played> played) : played_(std::move(played)) {}
    void Play(const Samples& samples, const std::atomic<bool>& keepPlaying) override {
        played_->playing = true;
        while (!played_->gateOpen && keepPlaying) {
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
        }
        played_->playing = false;  // before the clip counts, so a count means it is over
        played_->stoppedEarly = played_->stoppedEarly || !keepPlaying;
        if (keepPlaying) {
            std::lock_guard lock(played_->mutex);
            played_->clips.push_back(samples);
        }
    }

private:
    std::shared_ptr<Played> played_;
};

// espeak-ng's output for a text varies with what it spoke before (by up to
// a tenth); the test texts differ in length by far more than that.
bool SameSpeech(const Samples& a, const Samples& b) {
    const size_t difference = a.size() > b.size() ? a.size() - b.size() : b.size() - a.size();
    return !b.empty() && difference <= b.size() / 4;
}

struct Speech : ::testing::Test {
    orv::test::EnvVar all{"LC_ALL", nullptr};
    orv::test::EnvVar messages{"LC_MESSAGES", nullptr};
    orv::test::EnvVar lang{"LANG", "en_US.UTF-8"};
    std::shared_ptr<Played> played = std::make_shared<Played>();

    ~Speech() override {
        TTS_DeInit();
        OrvSettings::ReleaseInstance();
        ShowLog(false, false);
        LoadLanguageModule(1033);
    }
    bool Start() { return TTS_InitWithOutput(std::make_unique<RecordingOutput>(played)); }
};

TEST(SpeechVoice, MissingVoiceFallsBackToTheDefaultVoice) {
    for (const char* voice : {"no-such-voice", "en-us"}) {
        EXPECT_TRUE(SameSpeech(orv::SynthesizeSpeech("Sensor connected.", voice),
                               TTS_SynthesizeToMemory("Sensor connected.", 1033)))
            << voice;
    }
}

TEST_F(Speech, AnnouncementsQueueInOrderWithoutBlockingTheCallerAndDeInitCutsThemShort) {
    orv::test::StdoutCapture out;
    ShowLog(true, false);
    ASSERT_TRUE(Start());
    EXPECT_NE(out.Text().find("] TTS Lang 1033\n"), std::string::npos) << out.Text();

    played->gateOpen = false;
    const std::vector<std::string> texts = {"Sensor connected.", "Ready.",
                                            "Sensor battery is low. Please charge it soon."};
    for (const auto& text : texts) {
        TTS_Speak(text);  // returns although the output is held
    }
    ASSERT_TRUE(Eventually([&] { return played->playing.load(); }));
    EXPECT_EQ(played->Count(), 0u);
    played->gateOpen = true;
    ASSERT_TRUE(Eventually([&] { return played->Count() == texts.size(); }));
    for (size_t i = 0; i < texts.size(); ++i) {
        EXPECT_TRUE(SameSpeech(played->clips[i], TTS_SynthesizeToMemory(texts[i], 1033)))
            << texts[i];
    }

    played->gateOpen = false;
    TTS_Speak(texts[2]);
    TTS_Speak(texts[1]);
    ASSERT_TRUE(Eventually([&] { return played->playing.load(); }));
    TTS_DeInit();
    EXPECT_TRUE(played->stoppedEarly.load());
    EXPECT_EQ(played->Count(), texts.size()) << "the queued one is dropped";
}

// Only "Ready." here is spoken: before init, empty, with the effect sound
// off (from any thread) and after DeInit nothing is.
TEST_F(Speech, OnlyAllowedAnnouncementsArePlayed) {
    orv::test::TempDir dir;
    OrvSettings* settings = OrvSettings::GetInstanceIn(dir.path());
    TTS_Speak("Sensor connected.");
    ASSERT_TRUE(Start());
    TTS_Speak("");
    settings->effectSound = false;
    std::thread([] { TTS_Speak("Sensor disconnected."); }).join();
    settings->effectSound = true;
    TTS_Speak("Ready.");
    ASSERT_TRUE(Eventually([&] { return played->Count() == 1; }));
    TTS_DeInit();
    TTS_Speak("Sensor connected.");
    TTS_DeInit();
    EXPECT_EQ(played->Count(), 1u);
    EXPECT_TRUE(SameSpeech(played->clips[0], TTS_SynthesizeToMemory("Ready.", 1033)));
}

TEST_F(Speech, SpeakingWhileSpeechStartsAndStops) {
    std::vector<std::jthread> speakers;  // stopped and joined on the way out
    for (int i = 0; i < 3; ++i) {
        speakers.emplace_back([](const std::stop_token& stop) {
            while (!stop.stop_requested()) {
                TTS_Speak("Ready.");
            }
        });
    }
    for (int round = 0; round < 20; ++round) {
        ASSERT_TRUE(Start());
        TTS_DeInit();
    }
}

// This machine has no sound server: speech must fail to start with its log
// line, and the program carries on silently.
TEST_F(Speech, WithoutASoundServerInitFailsAndSpeechStaysSilent) {
    orv::test::StdoutCapture out;
    ShowLog(true, false);
    if (TTS_Init()) {
        GTEST_SKIP() << "a sound server is reachable here";
    }
    EXPECT_NE(out.Text().find(")] TTS Initialize error: "), std::string::npos) << out.Text();
    TTS_Speak("Ready.");
    TTS_DeInit();
}

}  // namespace
