// Plays one recorded clip in a window through playbin, slowed to 0.6 of
// normal speed on its first start so the swing is seen in slow motion.
// Bus messages are turned into events and handed to a poster, which must only
// queue them for the window's thread; every other call runs on that thread.
#pragma once

#include <gst/gst.h>

#include <atomic>
#include <functional>
#include <memory>
#include <mutex>
#include <string>

#include "video/frame_sink.h"
#include "video/frame_size.h"
#include "video/gst_support.h"
#include "video/result_codes.h"

enum class PlayerState {
    Closed = 0,
    Ready = 1,
    Opening = 2,
    Started = 3,
    Paused = 4,
    Stopped = 5,
    Closing = 6,
};

// Event numbers as the media platform counts them, kept for the logs.
enum PlayerEventType : int {
    kPlayerError = 1,
    kSessionStarted = 103,
    kSessionPaused = 104,
    kSessionClosed = 106,
    kSessionTopologyStatus = 111,
    kNewPresentation = 113,
    kEndOfPresentation = 211,
};

struct PlayerEvent {
    int type = 0;
    HRESULT status = S_OK;
    uint64_t session = 0;  // which opening of the player posted it
};

class CPlayer {
public:
    using EventPoster = std::function<void(const PlayerEvent&)>;

    // `videoSize` is the window's size: the picture is scaled into it with
    // black borders.
    static HRESULT CreateInstance(FrameTarget* videoWindow, FrameSize videoSize, EventPoster poster,
                                  std::unique_ptr<CPlayer>* player);
    ~CPlayer();
    CPlayer(const CPlayer&) = delete;
    CPlayer& operator=(const CPlayer&) = delete;

    HRESULT OpenURL(const std::string& path);
    HRESULT HandleEvent(const PlayerEvent& event);
    HRESULT SetPlaybackRate(float rate);
    HRESULT ShutdownSession();
    HRESULT Play();
    HRESULT Pause();
    // Stops playback where it is (state Stopped); the session stays open.
    HRESULT Stop();

    PlayerState GetState() const { return m_nState.load(); }
    float CurrentRate() const { return m_fCurrentRate; }

private:
    CPlayer(FrameTarget* videoWindow, FrameSize videoSize, EventPoster poster);

    HRESULT CreateSession();
    HRESULT ChangeState(GstState target, PlayerState reached);
    GstElement* CreateVideoOutput();
    HRESULT OnTopologyReady();
    HRESULT OnEndOfPresentation();
    HRESULT OnOtherSessionEvent(int type);
    void Post(int type, HRESULT status);
    static GstBusSyncReply OnBusMessage(GstBus* bus, GstMessage* message, gpointer self);

    FrameTarget* const m_hVideoWindow;
    const FrameSize videoSize_;
    // Guards the poster's use by streaming threads against its setting-up
    // (GLib's own locks are invisible to the thread sanitizer).
    std::mutex posterMutex_;
    const EventPoster poster_;
    GstElement* m_pMediaSession = nullptr;  // playbin
    std::atomic<PlayerState> m_nState{PlayerState::Closed};
    std::atomic<uint64_t> session_{0};
    float m_fCurrentRate = 0.0f;
};
