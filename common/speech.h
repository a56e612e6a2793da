// Spoken announcements (sensor connected or lost, low battery, distance to
// the pin, the quit question) in the user's language. One process-wide
// voice; speaking never blocks the caller and announcements keep their order.
#pragma once

#include <memory>
#include <string>

#include "common/speech_output.h"
#include "common/speech_synth.h"

// Starts the voice for the user's language on the desktop's sound server.
// False (and one log line) when speech cannot run, e.g. without a sound
// server; the program then simply stays silent.
bool TTS_Init();
// The same with another output for the samples (tests).
bool TTS_InitWithOutput(std::unique_ptr<orv::SpeechOutput> output);
// Queues `text`, unless the "Effect" sound setting is off, speech is not
// running or the text is empty. Safe from any thread, also during TTS_DeInit.
void TTS_Speak(const std::string& text);
// Stops the voice; later TTS_Speak calls do nothing.
void TTS_DeInit();
