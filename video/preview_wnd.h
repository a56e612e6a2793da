// The live camera picture in a small always-on-top pop-up, through the
// capture manager it owns. Made by the main dialog when the machine has a
// camera; used on the GUI thread only.
#pragma once

#include <QWidget>

#include <memory>

#include "video/capture_manager.h"

class VideoWindow;

// Show commands of StartPreview.
constexpr int kHideWindow = 0;
constexpr int kShowWindow = 5;

class PreviewWnd {
public:
    explicit PreviewWnd(CaptureSources sources, CaptureTiming timing = {});
    ~PreviewWnd();
    PreviewWnd(const PreviewWnd&) = delete;
    PreviewWnd& operator=(const PreviewWnd&) = delete;

    // Makes the window and the capture manager; false when either fails.
    bool Create(QWidget* owner);
    // Starts the preview and places the window; shown or hidden by
    // `showCommand`. Hidden, the preview still runs: recordings need it.
    bool StartPreview(int showCommand);

    CaptureManager* GetCaptureManager() const { return m_pCaptureManager.get(); }
    QWidget* Window() const;

private:
    void ReleaseCaptureManager();

    CaptureSources sources_;
    CaptureTiming timing_;
    std::unique_ptr<CaptureManager> m_pCaptureManager;
    QWidget* m_hParent = nullptr;
    VideoWindow* m_hWnd = nullptr;
};
