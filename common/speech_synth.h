// Text to speech samples with espeak-ng, run synchronously into memory. The
// library keeps one global state, so every call here is serialised; it is
// initialised on first use and stays for the life of the process.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace orv {

// Makes the engine ready; 0 on success, else espeak-ng's status code.
int SpeechEngineInit();
// Samples per second of what SynthesizeSpeech returns (valid once ready).
int SpeechSampleRate();

// The espeak-ng voice for a Windows language id: 1042 Korean, 1033 US
// English, 1041 Japanese, 2052 Mandarin; US English for any other.
const char* SpeechVoiceFor(int languageId);

// 16-bit mono samples of `text` spoken by `voice`, or by the default voice
// when espeak-ng has no such voice. Empty for an empty text or on failure.
std::vector<int16_t> SynthesizeSpeech(const std::string& text, const std::string& voice);

// The phoneme mnemonics espeak-ng reads for `text`, with "(xx)" wherever it
// switches to another language's rules (for checking the texts we ship).
std::string SpeechPhonemes(const std::string& text, int languageId);

}  // namespace orv

// `text` as spoken in the voice for `languageId`, into memory.
std::vector<int16_t> TTS_SynthesizeToMemory(const std::string& text, int languageId);
