#include "video/player_wnd.h"

#include <QCoreApplication>
#include <QGuiApplication>
#include <QMetaObject>
#include <QScreen>

#include <mutex>

#include "common/debug_log.h"
#include "video/ui_thread.h"
#include "video/video_window.h"
#include "video/window_placement.h"

namespace {

// Guards gPlayerWnd.
std::mutex gInstanceMutex;
PlayerWnd* gPlayerWnd = nullptr;

}  // namespace

PlayerWnd* PlayerWnd::GetInstance() {
    std::lock_guard lock(gInstanceMutex);
    if (gPlayerWnd == nullptr) {
        gPlayerWnd = new PlayerWnd();
    }
    return gPlayerWnd;
}

void PlayerWnd::ReleaseInstance() {
    PlayerWnd* instance = nullptr;
    {
        std::lock_guard lock(gInstanceMutex);
        std::swap(instance, gPlayerWnd);
    }
    if (instance != nullptr && !RunOnUiThread([instance] { delete instance; })) {
        delete instance;  // no GUI thread any more: nothing can race with us
    }
}

PlayerWnd::PlayerWnd() {
    LOG_INFO("PlayerWnd()\n");
}

PlayerWnd::~PlayerWnd() {
    LOG_INFO("~PlayerWnd()\n");
    ReleasePlayer();
    delete m_hWnd;
}

QWidget* PlayerWnd::Window() const {
    return m_hWnd;
}

bool PlayerWnd::SetWindowInstance(QWidget* owner) {
    bool made = false;
    RunOnUiThread([&] {
        if (m_hWnd != nullptr) {
            return;
        }
        m_hParent = owner;
        m_hWnd = new VideoWindow(owner);
        m_hWnd->setObjectName("Recording_Player_Window_Class");
        // Named for window switchers and screen readers; the window has no frame.
        m_hWnd->setWindowTitle(QCoreApplication::translate("PlayerWnd", "Swing replay"));
        made = true;
    });
    return made;
}

bool PlayerWnd::Create() {
    bool created = false;
    RunOnUiThread([&] { created = CreateOnUiThread(); });
    return created;
}

bool PlayerWnd::CreateOnUiThread() {
    if (m_pPlayer || m_hWnd == nullptr) {
        return false;
    }
    const uint64_t serial = ++playerSerial_;
    // Runs on streaming threads, which end before the window goes: it only
    // queues the event for this thread.
    VideoWindow* window = m_hWnd;
    auto poster = [this, window, serial](const PlayerEvent& event) {
        QMetaObject::invokeMethod(
            window, [this, serial, event] { OnPlayerEvent(serial, event); }, Qt::QueuedConnection);
    };
    CPlayer::CreateInstance(m_hWnd, kPlayerWindowSize, poster, &m_pPlayer);
    return m_pPlayer != nullptr;
}

bool PlayerWnd::OpenURL(const std::string& path) {
    bool opened = false;
    RunOnUiThread([&] { opened = OpenOnUiThread(path); });
    return opened;
}

bool PlayerWnd::OpenOnUiThread(const std::string& path) {
    if (!m_pPlayer || Failed(m_pPlayer->OpenURL(path))) {
        return false;
    }
    m_hWnd->SetVideoVisible(true);
    if (!m_hWnd->isVisible()) {
        const QScreen* screen = QGuiApplication::primaryScreen();
        m_hWnd->setGeometry(
            PlayerPlacement(screen != nullptr ? screen->geometry().size() : QSize()));
        m_hWnd->show();
    }
    return true;
}

void PlayerWnd::Close() {
    RunOnUiThread([this] { CloseOnUiThread(); });
}

void PlayerWnd::CloseOnUiThread() {
    ReleasePlayer();
    if (m_hWnd != nullptr) {
        m_hWnd->SetVideoVisible(false);
        m_hWnd->hide();
    }
}

void PlayerWnd::ReleasePlayer() {
    if (!m_pPlayer) {
        return;
    }
    const PlayerState state = m_pPlayer->GetState();
    if (state == PlayerState::Started || state == PlayerState::Paused) {
        m_pPlayer->Stop();
    }
    m_pPlayer->ShutdownSession();
    m_pPlayer.reset();
    ReturnFreedMemory();
}

bool PlayerWnd::HasPlayer() {
    bool has = false;
    RunOnUiThread([&] { has = m_pPlayer != nullptr; });
    return has;
}

PlayerState PlayerWnd::State() {
    PlayerState state = PlayerState::Closed;
    RunOnUiThread([&] { state = m_pPlayer ? m_pPlayer->GetState() : PlayerState::Closed; });
    return state;
}

void PlayerWnd::OnPlayerEvent(uint64_t player, const PlayerEvent& event) {
    if (!m_pPlayer || player != playerSerial_) {
        return;  // from a player already closed
    }
    const HRESULT hr = m_pPlayer->HandleEvent(event);
    if (Failed(hr)) {
        LOG_ERROR("An error occurred:%d.\n", hr);
        CloseOnUiThread();
        return;
    }
    const PlayerState state = m_pPlayer->GetState();
    LOG_INFO("PlayerState :%d\n", static_cast<int>(state));
    if (state == PlayerState::Stopped) {
        LOG_INFO("PlayerState::Stopped\n");
        CloseOnUiThread();
    } else if (state == PlayerState::Started) {
        LOG_INFO("PlayerState::Started\n");
    }
}
