#include "video/pulse_client.h"

#include <pulse/pulseaudio.h>

#include <algorithm>
#include <cmath>

#include "common/debug_log.h"
#include "video/result_codes.h"

namespace {

struct ServerInfoResult {
    bool done = false;
    std::string defaultSource;
};

struct SourceInfoResult {
    bool done = false;
    bool found = false;
    pa_cvolume volume{};
};

struct SuccessResult {
    bool done = false;
    bool ok = false;
};

void OnServerInfo(pa_context*, const pa_server_info* info, void* data) {
    auto* result = static_cast<ServerInfoResult*>(data);
    if (info != nullptr && info->default_source_name != nullptr) {
        result->defaultSource = info->default_source_name;
    }
    result->done = true;
}

void OnSourceInfo(pa_context*, const pa_source_info* info, int eol, void* data) {
    auto* result = static_cast<SourceInfoResult*>(data);
    if (eol != 0) {
        result->done = true;
        return;
    }
    if (info != nullptr) {
        result->found = true;
        result->volume = info->volume;
    }
}

void OnSuccess(pa_context*, int success, void* data) {
    auto* result = static_cast<SuccessResult*>(data);
    result->ok = success != 0;
    result->done = true;
}

bool IsTerminal(pa_context_state_t state) {
    return state == PA_CONTEXT_READY || state == PA_CONTEXT_FAILED ||
           state == PA_CONTEXT_TERMINATED;
}

}  // namespace

PulseClient::PulseClient(std::chrono::milliseconds timeout) : timeout_(timeout) {
    loop_ = pa_mainloop_new();
    context_ = pa_context_new(pa_mainloop_get_api(loop_), "Orvane X");
    if (context_ != nullptr &&
        pa_context_connect(context_, nullptr, PA_CONTEXT_NOAUTOSPAWN, nullptr) >= 0) {
        RunUntil([this] { return IsTerminal(pa_context_get_state(context_)); });
        connected_ = pa_context_get_state(context_) == PA_CONTEXT_READY;
    }
    if (!connected_) {
        LOG_INFO("No sound server: microphone left alone\n");
    }
}

PulseClient::~PulseClient() {
    if (context_ != nullptr) {
        pa_context_disconnect(context_);
        pa_context_unref(context_);
    }
    pa_mainloop_free(loop_);
}

bool PulseClient::RunUntil(const std::function<bool()>& done) {
    const auto deadline = std::chrono::steady_clock::now() + timeout_;
    while (!done()) {
        const auto left = std::chrono::duration_cast<std::chrono::microseconds>(
            deadline - std::chrono::steady_clock::now());
        if (left.count() <= 0 || pa_mainloop_prepare(loop_, static_cast<int>(left.count())) < 0 ||
            pa_mainloop_poll(loop_) < 0 || pa_mainloop_dispatch(loop_) < 0) {
            return false;
        }
    }
    return true;
}

bool PulseClient::Finish(pa_operation* op, const std::function<bool()>& done) {
    if (op == nullptr) {
        return false;
    }
    const bool finished = RunUntil(done);
    // A late answer must not write into the caller's result after it returned.
    pa_operation_cancel(op);
    pa_operation_unref(op);
    return finished;
}

std::optional<std::string> PulseClient::DefaultMicrophone() {
    if (!connected_) {
        return std::nullopt;
    }
    ServerInfoResult result;
    pa_operation* op = pa_context_get_server_info(context_, OnServerInfo, &result);
    const bool finished = Finish(op, [&] { return result.done; });
    if (!finished || result.defaultSource.empty() || result.defaultSource.ends_with(".monitor")) {
        return std::nullopt;
    }
    return result.defaultSource;
}

std::optional<pa_cvolume> PulseClient::SourceVolume(const std::string& source) {
    if (!connected_) {
        return std::nullopt;
    }
    SourceInfoResult result;
    pa_operation* op =
        pa_context_get_source_info_by_name(context_, source.c_str(), OnSourceInfo, &result);
    const bool finished = Finish(op, [&] { return result.done; });
    if (!finished || !result.found) {
        LOG_ERROR("pa_context_get_source_info_by_name error:0x%x\n", static_cast<unsigned>(E_FAIL));
        return std::nullopt;
    }
    return result.volume;
}

std::optional<float> PulseClient::SourceLevel(const std::string& source) {
    const std::optional<pa_cvolume> volume = SourceVolume(source);
    if (!volume) {
        return std::nullopt;
    }
    return static_cast<float>(pa_cvolume_max(&*volume)) / static_cast<float>(PA_VOLUME_NORM);
}

bool PulseClient::SetSourceLevel(const std::string& source, float level) {
    const std::optional<pa_cvolume> current = SourceVolume(source);
    if (!current) {
        return false;
    }
    pa_cvolume volume;
    const auto value =
        static_cast<pa_volume_t>(std::lround(std::max(0.0f, level) * PA_VOLUME_NORM));
    pa_cvolume_set(&volume, current->channels, value);
    SuccessResult result;
    pa_operation* op =
        pa_context_set_source_volume_by_name(context_, source.c_str(), &volume, OnSuccess, &result);
    if (!Finish(op, [&] { return result.done; }) || !result.ok) {
        LOG_ERROR("pa_context_set_source_volume_by_name error:0x%x\n",
                  static_cast<unsigned>(E_FAIL));
        return false;
    }
    return true;
}

float SetMicrophoneLevel(float level) {
    PulseClient client;
    return SetMicrophoneLevel(client, level);
}

float SetMicrophoneLevel(PulseClient& client, float level) {
    const std::optional<std::string> microphone = client.DefaultMicrophone();
    if (!microphone) {
        return 0.0f;
    }
    const float previous = client.SourceLevel(*microphone).value_or(0.0f);
    client.SetSourceLevel(*microphone, level);
    return previous;
}
