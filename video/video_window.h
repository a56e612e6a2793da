// The frameless, always-on-top pop-up that carries a video: black where no
// picture is drawn, moved by dragging the picture. Frames come from a
// pipeline as images and are painted by the toolkit, so no native window id
// is involved (X11, Wayland and off-screen platforms alike).
#pragma once

#include <QImage>
#include <QPoint>
#include <QWidget>

#include <mutex>

#include "video/frame_sink.h"

class VideoWindow : public QWidget, public FrameTarget {
public:
    explicit VideoWindow(QWidget* owner = nullptr);

    // Any thread: keeps the newest frame and asks for one repaint. Callers
    // end before the window goes.
    void PresentFrame(QImage frame) override;
    // Shows the frames (true) or black (false, the last frame is dropped).
    void SetVideoVisible(bool visible);

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

private:
    // Guards the frame slot below, filled by streaming threads.
    std::mutex frameMutex_;
    QImage frame_;
    bool repaintPosted_ = false;
    bool videoVisible_ = false;

    bool dragging_ = false;
    QPoint dragOffset_;
};
