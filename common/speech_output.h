// Where spoken samples go: the desktop's sound server in the product, a
// recording stand-in in tests.
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <vector>

namespace orv {

class SpeechOutput {
public:
    virtual ~SpeechOutput() = default;
    // Plays 16-bit mono samples and returns once they have been heard, or
    // soon after `keepPlaying` turns false.
    virtual void Play(const std::vector<int16_t>& samples,
                      const std::atomic<bool>& keepPlaying) = 0;
};

// A playback stream on the default PulseAudio server (PipeWire serves the
// same protocol). Null, with the library's error code in `error`, when no
// sound server can be reached.
std::unique_ptr<SpeechOutput> OpenSoundServerOutput(int sampleRate, int& error);

}  // namespace orv
