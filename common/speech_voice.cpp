#include "common/speech_voice.h"

#include <utility>

#include "common/debug_log.h"
#include "common/speech_synth.h"

namespace orv {

namespace {

// A burst of events (a flapping link) must not queue minutes of speech.
constexpr size_t kMaxPending = 16;

}  // namespace

SpeechVoice::SpeechVoice(std::unique_ptr<SpeechOutput> output, std::string voice)
    : output_(std::move(output)), voice_(std::move(voice)) {}

SpeechVoice::~SpeechVoice() {
    Stop();
}

void SpeechVoice::Start() {
    std::lock_guard lock(mutex_);
    if (running_) {
        return;
    }
    running_ = true;
    thread_ = std::thread(&SpeechVoice::Run, this);
}

void SpeechVoice::Stop() {
    {
        std::lock_guard lock(mutex_);
        running_ = false;
        pending_.clear();
    }
    wake_.notify_all();
    if (thread_.joinable()) {
        thread_.join();
    }
}

void SpeechVoice::Speak(std::string text) {
    {
        std::lock_guard lock(mutex_);
        if (!running_) {
            return;
        }
        if (pending_.size() >= kMaxPending) {
            LOG_ERROR("%zu announcements waiting, dropped: %s\n", pending_.size(), text.c_str());
            return;
        }
        pending_.push_back(std::move(text));
    }
    wake_.notify_one();
}

void SpeechVoice::Run() {
    while (true) {
        std::string text;
        {
            std::unique_lock lock(mutex_);
            wake_.wait(lock, [this] { return !running_ || !pending_.empty(); });
            if (!running_) {
                return;
            }
            text = std::move(pending_.front());
            pending_.pop_front();
        }
        const std::vector<int16_t> samples = SynthesizeSpeech(text, voice_);
        if (!samples.empty()) {
            output_->Play(samples, running_);
        }
    }
}

}  // namespace orv
