// The pop-up that replays the last swing: one per process. Its operations
// may be called from any thread; they run on the GUI thread (at once when
// called there) and never wait on it longer than a bounded time.
#pragma once

#include <QWidget>

#include <cstdint>
#include <memory>
#include <string>

#include "video/player.h"

class VideoWindow;

class PlayerWnd {
public:
    static PlayerWnd* GetInstance();
    static void ReleaseInstance();

    // Makes the window; false without an application or when it exists.
    bool SetWindowInstance(QWidget* owner);
    // Makes a player; false when one exists (a clip is still showing).
    bool Create();
    // Opens the clip and shows the window where it belongs.
    bool OpenURL(const std::string& path);
    // Stops and releases the player and hides the window.
    void Close();

    bool HasPlayer();
    PlayerState State();
    QWidget* Window() const;

private:
    PlayerWnd();
    ~PlayerWnd();
    PlayerWnd(const PlayerWnd&) = delete;
    PlayerWnd& operator=(const PlayerWnd&) = delete;

    bool CreateOnUiThread();
    bool OpenOnUiThread(const std::string& path);
    void CloseOnUiThread();
    void ReleasePlayer();
    void OnPlayerEvent(uint64_t player, const PlayerEvent& event);

    // All below are touched on the GUI thread only.
    std::unique_ptr<CPlayer> m_pPlayer;
    uint64_t playerSerial_ = 0;  // tells events of an earlier player apart
    VideoWindow* m_hWnd = nullptr;
    QWidget* m_hParent = nullptr;
};
