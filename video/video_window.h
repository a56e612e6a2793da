// The frameless, always-on-top pop-up that carries a video: black where no
// picture is drawn, moved by dragging the picture. GStreamer draws into a
// native child window through the video-overlay interface; the toolkit never
// paints over it.
#pragma once

#include <QPoint>
#include <QWidget>

#include <functional>

#include "video/gst_support.h"

class VideoWindow : public QWidget {
public:
    explicit VideoWindow(QWidget* owner = nullptr);

    // The native window that a video sink draws into; created on first use
    // and known to the X server when this returns.
    WindowHandle VideoHandle();
    // Shows the drawing area (a sink draws) or hides it (black).
    void SetVideoVisible(bool visible);
    // Called when the drawing area was uncovered and needs the last frame again.
    void SetRepaintHandler(std::function<void()> handler);

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

private:
    class VideoArea;

    VideoArea* area_;
    bool dragging_ = false;
    QPoint dragOffset_;
};
