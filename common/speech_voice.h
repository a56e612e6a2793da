// The process-wide voice: announcements are queued and spoken one after the
// other on the voice's own thread, so a caller never waits for speech.
#pragma once

#include <atomic>
#include <condition_variable>
#include <deque>
#include <memory>
#include <mutex>
#include <string>
#include <thread>

#include "common/speech_output.h"

namespace orv {

class SpeechVoice {
public:
    // `voice` is the espeak-ng voice name.
    SpeechVoice(std::unique_ptr<SpeechOutput> output, std::string voice);
    ~SpeechVoice();
    SpeechVoice(const SpeechVoice&) = delete;
    SpeechVoice& operator=(const SpeechVoice&) = delete;

    void Start();
    // Drops what is still queued, cuts the current announcement short and
    // joins the thread.
    void Stop();
    // Queues `text` behind the announcements not yet spoken.
    void Speak(std::string text);

private:
    void Run();

    std::unique_ptr<SpeechOutput> output_;
    const std::string voice_;
    std::thread thread_;
    // Guards pending_ and the hand-over of running_ to the thread.
    std::mutex mutex_;
    std::condition_variable wake_;
    std::deque<std::string> pending_;
    // Also read by the output while it plays, to stop early.
    std::atomic<bool> running_{false};
};

}  // namespace orv
