#include "video/recording_pipeline.h"

#include <gst/app/gstappsrc.h>

#include <algorithm>

#include "common/debug_log.h"
#include "video/gst_support.h"

namespace {

// One fragment per second: what a crash can lose at most.
constexpr guint kFragmentMs = 1000;
// Three seconds of raw frames may wait for a busy encoder before old ones go.
constexpr guint kMaxQueuedFrames = 90;

void Discard(std::initializer_list<GstElement*> elements) {
    for (GstElement* element : elements) {
        if (element != nullptr) {
            gst_object_unref(gst_object_ref_sink(element));
        }
    }
}

}  // namespace

RecordingPipeline::RecordingPipeline(std::string path, RecordingFormat format, Callbacks callbacks)
    : path_(std::move(path)), format_(format), callbacks_(std::move(callbacks)) {}

RecordingPipeline::~RecordingPipeline() {
    Teardown();
}

HRESULT RecordingPipeline::Start(const MicrophoneSource& microphone,
                                 std::chrono::milliseconds firstAudioWait) {
    HRESULT hr = Build(microphone.IsPresent() ? &microphone : nullptr);
    if (Succeeded(hr) && microphone_ != nullptr && !WaitForFirstAudio(firstAudioWait)) {
        // An open microphone that delivers nothing would keep the muxer from
        // writing anything at all.
        LOG_INFO("Microphone %s sends nothing: recording video only\n", microphone.Name().c_str());
        Teardown();
        hr = Build(nullptr);
    }
    if (Failed(hr)) {
        Teardown();
        return hr;
    }
    std::lock_guard lock(mutex_);
    started_ = true;
    if (firstFrame_ && callbacks_.firstFrame) {
        callbacks_.firstFrame();
    }
    return S_OK;
}

HRESULT RecordingPipeline::Build(const MicrophoneSource* microphone) {
    {
        std::lock_guard lock(mutex_);
        capsSet_ = firstFrame_ = audioSeen_ = eos_ = false;
        result_ = S_OK;
        error_.clear();
    }
    // The preview's clock, and a base time of our own: a frame's time on the
    // clock maps directly to its time in the file.
    pipeline_ = NewPipeline("recording", OnBusMessage, this);
    gst_element_set_start_time(pipeline_, GST_CLOCK_TIME_NONE);
    GstClock* clock = gst_system_clock_obtain();
    baseTime_ = gst_clock_get_time(clock);
    gst_object_unref(clock);
    gst_element_set_base_time(pipeline_, baseTime_);

    GstElement* mux = MakeElement("mp4mux", "mux");
    GstElement* file = MakeElement("filesink", "file");
    if (mux == nullptr || file == nullptr) {
        Discard({mux, file});
        return E_FAIL;
    }
    g_object_set(mux, "fragment-duration", kFragmentMs, nullptr);
    g_object_set(file, "location", path_.c_str(), "async", FALSE, nullptr);
    if (!AddAndLink(GST_BIN(pipeline_), {mux, file}) || !BuildVideoBranch(mux) ||
        (microphone != nullptr && !BuildAudioBranch(mux, *microphone))) {
        return E_FAIL;
    }
    if (gst_element_set_state(pipeline_, GST_STATE_PLAYING) == GST_STATE_CHANGE_FAILURE) {
        std::lock_guard lock(mutex_);
        LOG_ERROR("StartRecord error:0x%x\n",
                  static_cast<unsigned>(Failed(result_) ? result_ : E_FAIL));
        return Failed(result_) ? result_ : E_FAIL;
    }
    return S_OK;
}

bool RecordingPipeline::BuildVideoBranch(GstElement* mux) {
    GstElement* source = MakeElement("appsrc", "frames");
    GstElement* queue = MakeElement("queue", nullptr);
    GstElement* encoder = MakeElement("openh264enc", "h264");
    GstElement* parser = MakeElement("h264parse", nullptr);
    if (!source || !queue || !encoder || !parser) {
        Discard({source, queue, encoder, parser});
        return false;
    }
    g_object_set(source, "is-live", TRUE, "format", GST_FORMAT_TIME, "block", FALSE, "max-bytes",
                 G_GUINT64_CONSTANT(0), "max-buffers", static_cast<guint64>(kMaxQueuedFrames),
                 "leaky-type", GST_APP_LEAKY_TYPE_DOWNSTREAM, nullptr);
    const CameraMode& camera = format_.camera;
    // A key frame every second, so that every fragment starts with one.
    const guint gop = camera.fpsDen > 0 ? std::max(1, camera.fpsNum / camera.fpsDen) : 30;
    g_object_set(encoder, "bitrate", static_cast<guint>(GetEncodingBitrate(camera)), "rate-control",
                 1 /* bitrate */, "gop-size", gop, nullptr);
    if (!AddAndLink(GST_BIN(pipeline_), {source, queue, encoder, parser}) ||
        !gst_element_link(parser, mux)) {
        return false;
    }
    GstPtr<GstPad> pad(gst_element_get_static_pad(parser, "src"));
    gst_pad_add_probe(pad.get(), GST_PAD_PROBE_TYPE_BUFFER, OnEncodedFrame, this, nullptr);
    frames_ = source;
    return true;
}

bool RecordingPipeline::BuildAudioBranch(GstElement* mux, const MicrophoneSource& microphone) {
    GstElement* source = microphone.CreateElement();
    GstElement* queue = MakeElement("queue", nullptr);
    GstElement* convert = MakeElement("audioconvert", nullptr);
    GstElement* resample = MakeElement("audioresample", nullptr);
    GstElement* encoder = MakeElement("voaacenc", "aac");
    if (!source || !queue || !convert || !resample || !encoder) {
        Discard({source, queue, convert, resample, encoder});
        return false;
    }
    if (!AddAndLink(GST_BIN(pipeline_), {source, queue, convert, resample, encoder}) ||
        !gst_element_link(encoder, mux)) {
        return false;
    }
    GstPtr<GstPad> pad(gst_element_get_static_pad(convert, "sink"));
    gst_pad_add_probe(pad.get(), GST_PAD_PROBE_TYPE_BUFFER, OnAudioBuffer, this, nullptr);
    microphone_ = source;
    return true;
}

bool RecordingPipeline::WaitForFirstAudio(std::chrono::milliseconds wait) {
    std::unique_lock lock(mutex_);
    return changed_.wait_for(lock, wait, [this] { return audioSeen_ || Failed(result_); }) &&
           audioSeen_;
}

void RecordingPipeline::PushFrame(GstSample* sample, GstClockTime previewBaseTime) {
    GstBuffer* buffer = gst_sample_get_buffer(sample);
    const GstSegment* segment = gst_sample_get_segment(sample);
    if (buffer == nullptr || segment == nullptr || !GST_BUFFER_PTS_IS_VALID(buffer)) {
        return;
    }
    const GstClockTime runningTime =
        gst_segment_to_running_time(segment, GST_FORMAT_TIME, GST_BUFFER_PTS(buffer));
    if (!GST_CLOCK_TIME_IS_VALID(runningTime) || runningTime + previewBaseTime < baseTime_) {
        return;  // captured before this recording began
    }
    // A copy of our own: the camera's buffers go back to its pool at once.
    GstBuffer* frame = gst_buffer_copy_deep(buffer);
    GST_BUFFER_PTS(frame) = runningTime + previewBaseTime - baseTime_;
    GST_BUFFER_DTS(frame) = GST_CLOCK_TIME_NONE;
    std::lock_guard lock(mutex_);
    if (closing_ || Failed(result_)) {
        gst_buffer_unref(frame);
        return;
    }
    if (!capsSet_) {
        gst_app_src_set_caps(GST_APP_SRC(frames_), gst_sample_get_caps(sample));
        capsSet_ = true;
    }
    gst_app_src_push_buffer(GST_APP_SRC(frames_), frame);
}

HRESULT RecordingPipeline::Finish(std::chrono::milliseconds firstFrameWait,
                                  std::chrono::milliseconds finalizeWait) {
    std::unique_lock lock(mutex_);
    changed_.wait_for(lock, firstFrameWait, [this] { return firstFrame_ || Failed(result_); });
    closing_ = true;
    const bool hadFrame = firstFrame_;
    if (pipeline_ != nullptr && Succeeded(result_)) {
        lock.unlock();
        gst_app_src_end_of_stream(GST_APP_SRC(frames_));
        if (microphone_ != nullptr) {
            gst_element_send_event(microphone_, gst_event_new_eos());
        }
        lock.lock();
        if (!changed_.wait_for(lock, finalizeWait, [this] { return eos_ || Failed(result_); })) {
            LOG_ERROR("Finalize timeout error:0x%x\n", static_cast<unsigned>(E_FAIL));
            result_ = E_FAIL;
        }
    }
    if (Succeeded(result_) && !hadFrame) {
        LOG_ERROR("No frame recorded error:0x%x\n", static_cast<unsigned>(E_FAIL));
        result_ = E_FAIL;
    }
    const HRESULT result = result_;
    lock.unlock();
    Teardown();
    return result;
}

bool RecordingPipeline::HasFailed() {
    std::lock_guard lock(mutex_);
    return failureReported_;
}

HRESULT RecordingPipeline::Result() {
    std::lock_guard lock(mutex_);
    return result_;
}

void RecordingPipeline::Teardown() {
    DisposePipeline(pipeline_);
    frames_ = nullptr;
    microphone_ = nullptr;
}

GstBusSyncReply RecordingPipeline::OnBusMessage(GstBus*, GstMessage* message, gpointer self) {
    auto* recording = static_cast<RecordingPipeline*>(self);
    const GstMessageType type = GST_MESSAGE_TYPE(message);
    if (type == GST_MESSAGE_EOS) {
        std::lock_guard lock(recording->mutex_);
        recording->eos_ = true;
        recording->changed_.notify_all();
    } else if (type == GST_MESSAGE_ERROR) {
        HRESULT hr = E_FAIL;
        const std::string text = DescribeError(message, &hr);
        std::lock_guard lock(recording->mutex_);
        if (Succeeded(recording->result_)) {
            recording->result_ = hr;
            recording->error_ = text;
        }
        recording->changed_.notify_all();
        if (recording->started_ && !recording->closing_ && !recording->failureReported_) {
            recording->failureReported_ = true;
            if (recording->callbacks_.failed) {
                recording->callbacks_.failed(hr, text);
            }
        }
    }
    gst_message_unref(message);  // a dropped message is the handler's to release
    return GST_BUS_DROP;
}

GstPadProbeReturn RecordingPipeline::OnEncodedFrame(GstPad*, GstPadProbeInfo*, gpointer self) {
    auto* recording = static_cast<RecordingPipeline*>(self);
    std::lock_guard lock(recording->mutex_);
    if (!recording->firstFrame_) {
        recording->firstFrame_ = true;
        recording->changed_.notify_all();
        // After a reported failure the recording is over: no late "started".
        if (recording->started_ && !recording->closing_ && Succeeded(recording->result_) &&
            recording->callbacks_.firstFrame) {
            recording->callbacks_.firstFrame();
        }
    }
    return GST_PAD_PROBE_OK;
}

GstPadProbeReturn RecordingPipeline::OnAudioBuffer(GstPad*, GstPadProbeInfo*, gpointer self) {
    auto* recording = static_cast<RecordingPipeline*>(self);
    std::lock_guard lock(recording->mutex_);
    if (!recording->audioSeen_) {
        recording->audioSeen_ = true;
        recording->changed_.notify_all();
    }
    return GST_PAD_PROBE_OK;
}
