// A short synchronous conversation with the PulseAudio (or PipeWire) sound
// server: the default capture source and its volume. Without a server every
// call fails quickly; the failed connection is logged once per client.
#pragma once

#include <chrono>
#include <functional>
#include <optional>
#include <string>

#include <pulse/volume.h>

struct pa_context;
struct pa_mainloop;
struct pa_operation;

class PulseClient {
public:
    explicit PulseClient(std::chrono::milliseconds timeout = std::chrono::milliseconds(2000));
    ~PulseClient();
    PulseClient(const PulseClient&) = delete;
    PulseClient& operator=(const PulseClient&) = delete;

    bool Connected() const { return connected_; }

    // The default source when it is a real microphone (a ".monitor" source
    // records the speakers and is the default on machines without a microphone).
    std::optional<std::string> DefaultMicrophone();
    // Volume of a source as a scalar, 1.0 being the normal level.
    std::optional<float> SourceLevel(const std::string& source);
    bool SetSourceLevel(const std::string& source, float level);

private:
    // Runs the loop until `done` holds or the time-out passes.
    bool RunUntil(const std::function<bool()>& done);
    // Waits for an operation's answer, then releases the operation.
    bool Finish(pa_operation* op, const std::function<bool()>& done);
    std::optional<pa_cvolume> SourceVolume(const std::string& source);

    std::chrono::milliseconds timeout_;
    pa_mainloop* loop_ = nullptr;
    pa_context* context_ = nullptr;
    bool connected_ = false;
};

// Sets the default microphone's volume; returns the level in force before
// (0.0 when there is no sound server or no microphone).
float SetMicrophoneLevel(float level);
float SetMicrophoneLevel(PulseClient& client, float level);
