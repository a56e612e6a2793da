#include "common/speech_synth.h"

#include <espeak-ng/espeak_ng.h>
#include <espeak-ng/speak_lib.h>

#include <mutex>

#include "common/debug_log.h"

namespace orv {

namespace {

// Guards every espeak-ng call and the two values below: the library has one
// global voice, callback and output mode.
std::mutex gEngineMutex;
bool gEngineReady = false;
// The voice last asked for (the default voice may be standing in for it).
std::string gSelectedVoice;

int CollectSamples(short* samples, int count, espeak_EVENT* events) {
    auto* out = static_cast<std::vector<int16_t>*>(events->user_data);
    if (samples != nullptr && count > 0 && out != nullptr) {
        out->insert(out->end(), samples, samples + count);
    }
    return 0;
}

// Needs gEngineMutex.
espeak_ng_STATUS InitLocked() {
    if (gEngineReady) {
        return ENS_OK;
    }
    espeak_ng_InitializePath(nullptr);
    espeak_ng_ERROR_CONTEXT context = nullptr;
    espeak_ng_STATUS status = espeak_ng_Initialize(&context);
    espeak_ng_ClearErrorContext(&context);
    if (status == ENS_OK) {
        status = espeak_ng_InitializeOutput(ENOUTPUT_MODE_SYNCHRONOUS, 0, nullptr);
    }
    if (status != ENS_OK) {
        return status;
    }
    espeak_SetSynthCallback(CollectSamples);
    gEngineReady = true;
    return ENS_OK;
}

// Needs gEngineMutex. espeak-ng keeps its previous voice when a name is not
// found, and has none at all right after initialisation, so a missing voice
// is replaced by the default one explicitly.
bool SelectVoiceLocked(const std::string& voice) {
    if (voice == gSelectedVoice) {
        return true;
    }
    gSelectedVoice.clear();
    const espeak_ERROR error = espeak_SetVoiceByName(voice.c_str());
    if (error != EE_OK) {
        LOG_ERROR("espeak_SetVoiceByName error:0x%x\n", static_cast<unsigned>(error));
        if (espeak_SetVoiceByName(ESPEAKNG_DEFAULT_VOICE) != EE_OK) {
            return false;
        }
    }
    gSelectedVoice = voice;
    return true;
}

bool ReadyWithVoiceLocked(const std::string& voice) {
    return InitLocked() == ENS_OK && SelectVoiceLocked(voice);
}

}  // namespace

int SpeechEngineInit() {
    std::lock_guard lock(gEngineMutex);
    return static_cast<int>(InitLocked());
}

int SpeechSampleRate() {
    std::lock_guard lock(gEngineMutex);
    return gEngineReady ? espeak_ng_GetSampleRate() : 0;
}

const char* SpeechVoiceFor(int languageId) {
    switch (languageId) {
        case 1042:
            return "ko";
        case 1041:
            return "ja";
        case 2052:
            // The plain "cmn" voice reads the pinyin of its own dictionary by
            // English rules; this Mandarin voice speaks it as Mandarin.
            return "cmn-latn-pinyin";
        default:
            return "en-us";
    }
}

std::vector<int16_t> SynthesizeSpeech(const std::string& text, const std::string& voice) {
    std::vector<int16_t> samples;
    if (text.empty()) {
        return samples;
    }
    std::lock_guard lock(gEngineMutex);
    if (!ReadyWithVoiceLocked(voice)) {
        return samples;
    }
    const espeak_ERROR error = espeak_Synth(text.c_str(), text.size() + 1, 0, POS_CHARACTER, 0,
                                            espeakCHARS_UTF8, nullptr, &samples);
    if (error != EE_OK) {
        LOG_ERROR("espeak_Synth error:0x%x\n", static_cast<unsigned>(error));
    }
    return samples;
}

std::string SpeechPhonemes(const std::string& text, int languageId) {
    std::string phonemes;
    std::lock_guard lock(gEngineMutex);
    if (text.empty() || !ReadyWithVoiceLocked(SpeechVoiceFor(languageId))) {
        return phonemes;
    }
    const void* rest = text.c_str();
    while (rest != nullptr) {
        const char* clause = espeak_TextToPhonemes(&rest, espeakCHARS_UTF8, 0);
        if (clause != nullptr) {
            phonemes += clause;
            phonemes += ' ';
        }
    }
    return phonemes;
}

}  // namespace orv

std::vector<int16_t> TTS_SynthesizeToMemory(const std::string& text, int languageId) {
    return orv::SynthesizeSpeech(text, orv::SpeechVoiceFor(languageId));
}
