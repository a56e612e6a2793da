#include "common/speech.h"

#include <mutex>
#include <utility>

#include "common/debug_log.h"
#include "common/language_id.h"
#include "common/settings.h"
#include "common/speech_voice.h"

namespace {

// Guards pVoice: session threads speak while the UI thread starts or stops
// speech.
std::mutex gVoiceMutex;
std::unique_ptr<orv::SpeechVoice> pVoice;

}  // namespace

bool TTS_Init() {
    return TTS_InitWithOutput(nullptr);
}

bool TTS_InitWithOutput(std::unique_ptr<orv::SpeechOutput> output) {
    const int status = orv::SpeechEngineInit();
    if (status != 0) {
        LOG_ERROR_AS("TTS_Init", "TTS Initialize error: %x\n", static_cast<unsigned>(status));
        return false;
    }
    if (output == nullptr) {
        int error = 0;
        output = orv::OpenSoundServerOutput(orv::SpeechSampleRate(), error);
        if (output == nullptr) {
            LOG_ERROR_AS("TTS_Init", "TTS Initialize error: %x\n", static_cast<unsigned>(error));
            return false;
        }
    }
    const int languageId = GetUserDefaultLanguageId();
    LOG_INFO_AS("TTS_Init", "TTS Lang %d\n", languageId);
    auto voice =
        std::make_unique<orv::SpeechVoice>(std::move(output), orv::SpeechVoiceFor(languageId));
    voice->Start();
    std::unique_ptr<orv::SpeechVoice> previous;
    {
        std::lock_guard lock(gVoiceMutex);
        previous = std::exchange(pVoice, std::move(voice));
    }
    return true;
}

void TTS_Speak(const std::string& text) {
    if (!OrvSettings::IsEffectSoundOn() || text.empty()) {
        return;
    }
    std::lock_guard lock(gVoiceMutex);
    if (pVoice != nullptr) {
        pVoice->Speak(text);
    }
}

void TTS_DeInit() {
    std::unique_ptr<orv::SpeechVoice> voice;
    {
        std::lock_guard lock(gVoiceMutex);
        voice = std::move(pVoice);
    }
    // Destroying the voice outside the lock: speakers never wait for the
    // announcement that is being cut short.
}
