#include "video/preview_wnd.h"

#include <QCoreApplication>
#include <QGuiApplication>
#include <QScreen>

#include "common/debug_log.h"
#include "video/video_window.h"
#include "video/window_placement.h"

PreviewWnd::PreviewWnd(CaptureSources sources, CaptureTiming timing)
    : sources_(std::move(sources)), timing_(timing) {
    LOG_INFO("PreviewWnd()\n");
}

PreviewWnd::~PreviewWnd() {
    LOG_INFO("~PreviewWnd()\n");
    // The sink must stop drawing before its window goes.
    ReleaseCaptureManager();
    delete m_hWnd;
}

QWidget* PreviewWnd::Window() const {
    return m_hWnd;
}

void PreviewWnd::ReleaseCaptureManager() {
    if (m_pCaptureManager) {
        m_pCaptureManager->ReleaseEngine();
        m_pCaptureManager.reset();  // restores the microphone's level
    }
}

bool PreviewWnd::Create(QWidget* owner) {
    if (m_hWnd != nullptr) {
        return false;
    }
    m_hParent = owner;
    m_hWnd = new VideoWindow(owner);
    m_hWnd->setObjectName("Capture_Engine_Preview_Window_Class");
    // Named for window switchers and screen readers; the window has no frame.
    m_hWnd->setWindowTitle(QCoreApplication::translate("PreviewWnd", "Camera preview"));
    m_pCaptureManager = std::make_unique<CaptureManager>(sources_, timing_);
    if (Failed(m_pCaptureManager->InitializeCaptureManager(m_hWnd))) {
        ReleaseCaptureManager();
        return false;
    }
    return true;
}

bool PreviewWnd::StartPreview(int showCommand) {
    if (!m_pCaptureManager || m_hWnd == nullptr) {
        return false;
    }
    const HRESULT hr = m_pCaptureManager->StartPreview();
    const QScreen* screen = QGuiApplication::primaryScreen();
    const QRect workArea = screen != nullptr ? screen->availableGeometry() : QRect();
    const FrameSize frame = CachedPreferredFrameSize();
    LOG_INFO_AS("GetPreferredRecordingSize", "GetPreferredRecordingSize: %d, %d\n", frame.width,
                frame.height);
    if (frame.width != 0 && frame.height != 0) {
        m_hWnd->setGeometry(PreviewPlacement(workArea, frame));
        m_hWnd->SetVideoVisible(Succeeded(hr));
        m_hWnd->setVisible(showCommand != kHideWindow);
    }
    return Succeeded(hr);
}
