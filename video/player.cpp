#include "video/player.h"

#include "common/debug_log.h"

namespace {

constexpr float kSlowMotionRate = 0.6f;
// playbin's flag for video; audio is left out: clips are recorded with the
// microphone at level 0, and the only AAC decoders here are GPL as shipped.
constexpr guint kPlayVideoOnly = 0x1;

// openh264 (BSD) over the libav decoder, which is GPL as shipped here.
void PreferOpenH264Decoder() {
    GstPtr<GstElementFactory> factory(gst_element_factory_find("openh264dec"));
    if (factory) {
        gst_plugin_feature_set_rank(GST_PLUGIN_FEATURE(factory.get()), GST_RANK_PRIMARY + 1);
    }
}

}  // namespace

CPlayer::CPlayer(FrameTarget* videoWindow, FrameSize videoSize, EventPoster poster)
    : m_hVideoWindow(videoWindow), videoSize_(videoSize), poster_(std::move(poster)) {}

HRESULT CPlayer::CreateInstance(FrameTarget* videoWindow, FrameSize videoSize, EventPoster poster,
                                std::unique_ptr<CPlayer>* player) {
    if (player == nullptr) {
        return E_POINTER;
    }
    if (!EnsureGStreamer()) {
        return E_FAIL;
    }
    PreferOpenH264Decoder();
    player->reset(new CPlayer(videoWindow, videoSize, std::move(poster)));
    return S_OK;
}

CPlayer::~CPlayer() {
    ShutdownSession();
}

HRESULT CPlayer::CreateSession() {
    m_pMediaSession = MakeElement("playbin", "player");
    if (m_pMediaSession == nullptr) {
        return E_FAIL;
    }
    gst_object_ref_sink(m_pMediaSession);
    g_object_set(m_pMediaSession, "flags", kPlayVideoOnly, nullptr);
    { std::lock_guard publish(posterMutex_); }
    SetSyncHandler(m_pMediaSession, OnBusMessage, this);
    return S_OK;
}

GstElement* CPlayer::CreateVideoOutput() {
    GstElement* scale = MakeElement("videoconvertscale", nullptr);
    GstElement* size = MakeElement("capsfilter", nullptr);
    GstElement* sink = MakeFrameSink("player-sink", m_hVideoWindow, true);
    if (scale == nullptr || size == nullptr || sink == nullptr) {
        for (GstElement* e : {scale, size, sink}) {
            if (e != nullptr) {
                gst_object_unref(gst_object_ref_sink(e));
            }
        }
        return nullptr;
    }
    // Scaled here, on a streaming thread, to the window's size and
    // letter-boxed in black: the window only copies it to the screen.
    GstCapsPtr caps(gst_caps_new_simple("video/x-raw", "width", G_TYPE_INT, videoSize_.width,
                                        "height", G_TYPE_INT, videoSize_.height,
                                        "pixel-aspect-ratio", GST_TYPE_FRACTION, 1, 1, nullptr));
    g_object_set(scale, "add-borders", TRUE, nullptr);
    g_object_set(size, "caps", caps.get(), nullptr);
    GstElement* bin = gst_bin_new("video-output");
    GstPtr<GstPad> pad(gst_element_get_static_pad(scale, "sink"));
    if (!AddAndLink(GST_BIN(bin), {scale, size, sink}) ||
        !gst_element_add_pad(bin, gst_ghost_pad_new("sink", pad.get()))) {
        gst_object_unref(gst_object_ref_sink(bin));
        return nullptr;
    }
    return bin;
}

HRESULT CPlayer::OpenURL(const std::string& path) {
    ShutdownSession();
    if (GetState() == PlayerState::Closed) {
        if (Failed(CreateSession())) {
            LOG_ERROR("CreateSession error: 0x%x\n", static_cast<unsigned>(E_FAIL));
            return E_FAIL;
        }
        m_nState = PlayerState::Ready;
    }
    ++session_;
    HRESULT hr = S_OK;
    GError* error = nullptr;
    gchar* uri = gst_filename_to_uri(path.c_str(), &error);
    if (uri == nullptr) {
        hr = E_FAIL;
        LOG_ERROR("CreateMediaSource error: 0x%x\n", static_cast<unsigned>(hr));
        g_clear_error(&error);
    }
    GstElement* output = Succeeded(hr) ? CreateVideoOutput() : nullptr;
    if (Succeeded(hr) && output == nullptr) {
        hr = E_FAIL;
        LOG_ERROR("CreatePlaybackTopology error: 0x%x\n", static_cast<unsigned>(hr));
    }
    if (Succeeded(hr)) {
        g_object_set(m_pMediaSession, "uri", uri, "video-sink", output, nullptr);
        if (gst_element_set_state(m_pMediaSession, GST_STATE_PAUSED) == GST_STATE_CHANGE_FAILURE) {
            hr = E_FAIL;
            LOG_ERROR("SetTopology error: 0x%x\n", static_cast<unsigned>(hr));
        }
    }
    g_free(uri);
    if (Failed(hr)) {
        ShutdownSession();
        return hr;
    }
    m_nState = PlayerState::Opening;
    return S_OK;
}

HRESULT CPlayer::HandleEvent(const PlayerEvent& event) {
    if (event.session != session_.load() || GetState() == PlayerState::Closed) {
        return S_OK;  // from a session already shut down
    }
    if (Failed(event.status)) {
        return event.status;
    }
    LOG_INFO("CPlayer::HandleEvent() type: %d\n", event.type);
    switch (event.type) {
        case kSessionTopologyStatus:
            return OnTopologyReady();
        case kEndOfPresentation:
            return OnEndOfPresentation();
        default:
            return OnOtherSessionEvent(event.type);
    }
}

HRESULT CPlayer::OnTopologyReady() {
    return Play();
}

HRESULT CPlayer::OnEndOfPresentation() {
    m_nState = PlayerState::Stopped;
    return S_OK;
}

HRESULT CPlayer::OnOtherSessionEvent(int type) {
    // Only the first start is slowed down; later starts keep the rate.
    if (type != kSessionStarted || m_fCurrentRate != 0.0f) {
        return S_OK;
    }
    if (GetState() == PlayerState::Started && m_pMediaSession != nullptr) {
        Pause();
    }
    SetPlaybackRate(kSlowMotionRate);
    Play();
    return S_OK;
}

HRESULT CPlayer::SetPlaybackRate(float rate) {
    if (m_pMediaSession == nullptr) {
        return -1;
    }
    gint64 position = 0;
    if (!gst_element_query_position(m_pMediaSession, GST_FORMAT_TIME, &position)) {
        position = 0;
    }
    // A flushing seek from where playback stands; the instant-rate flag ends
    // clips early.
    const bool applied =
        gst_element_seek(m_pMediaSession, rate, GST_FORMAT_TIME,
                         static_cast<GstSeekFlags>(GST_SEEK_FLAG_FLUSH | GST_SEEK_FLAG_ACCURATE),
                         GST_SEEK_TYPE_SET, position, GST_SEEK_TYPE_NONE, GST_CLOCK_TIME_NONE);
    // There is no query for the nearest supported rate: what the seek gave.
    const float nearest = applied ? rate : 1.0f;
    LOG_INFO("Rate Control nearest rate(%f): %f\n", rate, nearest);
    m_fCurrentRate = nearest;
    return applied ? S_OK : E_FAIL;
}

HRESULT CPlayer::Play() {
    return ChangeState(GST_STATE_PLAYING, PlayerState::Started);
}

HRESULT CPlayer::Pause() {
    return ChangeState(GST_STATE_PAUSED, PlayerState::Paused);
}

HRESULT CPlayer::ChangeState(GstState target, PlayerState reached) {
    if (m_pMediaSession == nullptr ||
        gst_element_set_state(m_pMediaSession, target) == GST_STATE_CHANGE_FAILURE) {
        return E_FAIL;
    }
    m_nState = reached;
    return S_OK;
}

HRESULT CPlayer::Stop() {
    return ChangeState(GST_STATE_READY, PlayerState::Stopped);
}

HRESULT CPlayer::ShutdownSession() {
    if (m_pMediaSession != nullptr) {
        m_nState = PlayerState::Closing;
        DisposePipeline(m_pMediaSession);
    }
    m_fCurrentRate = 0.0f;
    m_nState = PlayerState::Closed;
    return S_OK;
}

void CPlayer::Post(int type, HRESULT status) {
    std::lock_guard lock(posterMutex_);
    if (GetState() != PlayerState::Closing && poster_) {
        poster_(PlayerEvent{type, status, session_.load()});
    }
}

GstBusSyncReply CPlayer::OnBusMessage(GstBus*, GstMessage* message, gpointer self) {
    auto* player = static_cast<CPlayer*>(self);
    switch (GST_MESSAGE_TYPE(message)) {
        case GST_MESSAGE_STATE_CHANGED: {
            if (!GST_IS_PIPELINE(GST_MESSAGE_SRC(message))) {
                break;
            }
            GstState oldState, newState;
            gst_message_parse_state_changed(message, &oldState, &newState, nullptr);
            if (oldState == GST_STATE_READY && newState == GST_STATE_PAUSED) {
                player->Post(kSessionTopologyStatus, S_OK);
            } else if (newState == GST_STATE_PLAYING) {
                player->Post(kSessionStarted, S_OK);
            } else if (oldState == GST_STATE_PLAYING && newState == GST_STATE_PAUSED) {
                player->Post(kSessionPaused, S_OK);
            }
            break;
        }
        case GST_MESSAGE_EOS:
            player->Post(kEndOfPresentation, S_OK);
            break;
        case GST_MESSAGE_ERROR: {
            HRESULT hr = E_FAIL;
            const std::string text = DescribeError(message, &hr);
            LOG_ERROR("Playback error:0x%x %s\n", static_cast<unsigned>(hr), text.c_str());
            player->Post(kPlayerError, hr);
            break;
        }
        default:
            break;
    }
    gst_message_unref(message);  // a dropped message is the handler's to release
    return GST_BUS_DROP;
}
