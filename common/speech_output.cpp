#include "common/speech_output.h"

#include <pulse/error.h>
#include <pulse/simple.h>

#include <algorithm>

#include "common/debug_log.h"

namespace orv {

namespace {

// Written in slices of 100 ms with at most 200 ms queued in the server, so a
// stop never waits longer than that for the announcement being played.
constexpr int kSliceMs = 100;
constexpr int kQueuedMs = 200;

class SoundServerOutput final : public SpeechOutput {
public:
    SoundServerOutput(pa_simple* stream, int sampleRate) : stream_(stream), rate_(sampleRate) {}
    ~SoundServerOutput() override { pa_simple_free(stream_); }
    SoundServerOutput(const SoundServerOutput&) = delete;
    SoundServerOutput& operator=(const SoundServerOutput&) = delete;

    void Play(const std::vector<int16_t>& samples, const std::atomic<bool>& keepPlaying) override {
        const size_t slice = static_cast<size_t>(rate_) * kSliceMs / 1000;
        int error = 0;
        for (size_t at = 0; at < samples.size() && keepPlaying; at += slice) {
            const size_t count = std::min(slice, samples.size() - at);
            if (pa_simple_write(stream_, samples.data() + at, count * sizeof(int16_t), &error) <
                0) {
                LOG_ERROR("pa_simple_write error:0x%x\n", static_cast<unsigned>(error));
                return;
            }
        }
        // Draining also starts playback of an announcement shorter than the
        // server's pre-buffer.
        if (!keepPlaying) {
            if (pa_simple_flush(stream_, &error) < 0) {
                LOG_ERROR("pa_simple_flush error:0x%x\n", static_cast<unsigned>(error));
            }
        } else if (pa_simple_drain(stream_, &error) < 0) {
            LOG_ERROR("pa_simple_drain error:0x%x\n", static_cast<unsigned>(error));
        }
    }

private:
    pa_simple* stream_;
    int rate_;
};

}  // namespace

std::unique_ptr<SpeechOutput> OpenSoundServerOutput(int sampleRate, int& error) {
    const pa_sample_spec format{PA_SAMPLE_S16LE, static_cast<uint32_t>(sampleRate), 1};
    const uint32_t queued =
        static_cast<uint32_t>(pa_usec_to_bytes(pa_usec_t{kQueuedMs} * 1000, &format));
    const pa_buffer_attr buffer{static_cast<uint32_t>(-1), queued, static_cast<uint32_t>(-1),
                                static_cast<uint32_t>(-1), static_cast<uint32_t>(-1)};
    error = 0;
    pa_simple* stream = pa_simple_new(nullptr, "Orvane X", PA_STREAM_PLAYBACK, nullptr,
                                      "announcement", &format, nullptr, &buffer, &error);
    if (stream == nullptr) {
        return nullptr;
    }
    return std::make_unique<SoundServerOutput>(stream, sampleRate);
}

}  // namespace orv
