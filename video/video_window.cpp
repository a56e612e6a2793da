#include "video/video_window.h"

#include <QGuiApplication>
#include <QMouseEvent>
#include <QPainter>
#include <QWindow>

// Painted by the video sink alone: no paint engine, no background, so the
// toolkit's back buffer never covers the picture.
class VideoWindow::VideoArea : public QWidget {
public:
    explicit VideoArea(QWidget* parent) : QWidget(parent) {
        setAttribute(Qt::WA_NativeWindow);
        setAttribute(Qt::WA_PaintOnScreen);
        setAttribute(Qt::WA_NoSystemBackground);
        setAttribute(Qt::WA_OpaquePaintEvent);
    }

    QPaintEngine* paintEngine() const override { return nullptr; }

    std::function<void()> onExpose;

protected:
    void paintEvent(QPaintEvent*) override {
        if (onExpose) {
            onExpose();
        }
    }
};

VideoWindow::VideoWindow(QWidget* owner)
    : QWidget(owner, Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint),
      area_(new VideoArea(this)) {
    setAttribute(Qt::WA_OpaquePaintEvent);
    area_->hide();
}

WindowHandle VideoWindow::VideoHandle() {
    const WindowHandle handle = area_->winId();
    // The sink talks to the X server over its own connection: the window must
    // exist there before the sink sees its id.
    QGuiApplication::sync();
    return handle;
}

void VideoWindow::SetVideoVisible(bool visible) {
    area_->setVisible(visible);
}

void VideoWindow::SetRepaintHandler(std::function<void()> handler) {
    area_->onExpose = std::move(handler);
}

void VideoWindow::paintEvent(QPaintEvent* event) {
    QPainter painter(this);
    painter.fillRect(event->rect(), Qt::black);
}

void VideoWindow::resizeEvent(QResizeEvent*) {
    area_->setGeometry(rect());
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
