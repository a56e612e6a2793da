#include "ui/waiting_overlay.h"

#include <QEvent>
#include <QPainter>
#include <QTimer>

#include "ui/ui_theme.h"

namespace OrvaneWinUI {

WaitingOverlay::WaitingOverlay(QWidget* parent)
    : QWidget(parent), text_(tr("Please wait...")), spin_(new QTimer(this)) {
    setAttribute(Qt::WA_NoSystemBackground);
    setFocusPolicy(Qt::StrongFocus);
    spin_->setInterval(40);
    connect(spin_, &QTimer::timeout, this, [this] {
        angle_ = (angle_ + 12) % 360;
        update();
    });
    parent->installEventFilter(this);
    hide();
}

void WaitingOverlay::ShowOverlay() {
    setGeometry(parentWidget()->rect());
    raise();
    show();
    setFocus();  // keys no longer reach the controls beneath
    spin_->start();
}

void WaitingOverlay::HideOverlay() {
    spin_->stop();
    hide();
}

void WaitingOverlay::SetText(const QString& text) {
    text_ = text;
    update();
}

bool WaitingOverlay::eventFilter(QObject* watched, QEvent* event) {
    if (watched == parentWidget() && event->type() == QEvent::Resize) {
        setGeometry(parentWidget()->rect());
    }
    return QWidget::eventFilter(watched, event);
}

void WaitingOverlay::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillRect(rect(), QColor(8, 10, 12, 190));

    const QRect box(width() / 2 - 170, height() / 2 - 70, 340, 140);
    painter.setPen(QPen(QColor(58, 68, 79), 1));
    painter.setBrush(QColor(32, 38, 45));
    painter.drawRoundedRect(box, 12, 12);

    const QRect ring(box.left() + 30, box.center().y() - 22, 44, 44);
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(QColor(58, 68, 79), 5));
    painter.drawEllipse(ring);
    painter.setPen(QPen(kConnectedColor, 5, Qt::SolidLine, Qt::RoundCap));
    painter.drawArc(ring, -angle_ * 16, 100 * 16);

    QFont font = painter.font();
    font.setPixelSize(20);
    font.setBold(true);
    painter.setFont(font);
    painter.setPen(kValueColor);
    painter.drawText(box.adjusted(100, 0, -16, 0), Qt::AlignVCenter | Qt::TextWordWrap, text_);
}

}  // namespace OrvaneWinUI
