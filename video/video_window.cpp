#include "video/video_window.h"

#include <QMetaObject>
#include <QMouseEvent>
#include <QPainter>
#include <QWindow>

VideoWindow::VideoWindow(QWidget* owner)
    : QWidget(owner, Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint) {
    setAttribute(Qt::WA_OpaquePaintEvent);
}

void VideoWindow::PresentFrame(QImage frame) {
    {
        std::lock_guard lock(frameMutex_);
        if (!videoVisible_) {
            return;
        }
        frame_ = std::move(frame);
        // One repaint in flight is enough: it paints whatever is newest then.
        if (repaintPosted_) {
            return;
        }
        repaintPosted_ = true;
    }
    QMetaObject::invokeMethod(
        this,
        [this] {
            {
                std::lock_guard lock(frameMutex_);
                repaintPosted_ = false;
            }
            // A hidden window paints nothing now; the newest frame shows when it is shown.
            update();
        },
        Qt::QueuedConnection);
}

void VideoWindow::SetVideoVisible(bool visible) {
    {
        std::lock_guard lock(frameMutex_);
        videoVisible_ = visible;
        if (!visible) {
            frame_ = QImage();  // the memory goes with the picture
        }
    }
    update();
}

void VideoWindow::paintEvent(QPaintEvent* event) {
    QImage frame;
    {
        std::lock_guard lock(frameMutex_);
        frame = frame_;  // shared, not copied
    }
    QPainter painter(this);
    if (frame.isNull()) {
        painter.fillRect(event->rect(), Qt::black);
        return;
    }
    painter.drawImage(rect(), frame);
}

void VideoWindow::mousePressEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton) {
        return;
    }
    // The window manager moves the window when it can; otherwise we do.
    if (windowHandle() != nullptr && windowHandle()->startSystemMove()) {
        return;
    }
    dragging_ = true;
    dragOffset_ = event->globalPosition().toPoint() - frameGeometry().topLeft();
}

void VideoWindow::mouseMoveEvent(QMouseEvent* event) {
    if (dragging_ && (event->buttons() & Qt::LeftButton)) {
        move(event->globalPosition().toPoint() - dragOffset_);
    }
}

void VideoWindow::mouseReleaseEvent(QMouseEvent*) {
    dragging_ = false;
}
