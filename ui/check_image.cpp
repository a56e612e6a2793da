#include "ui/check_image.h"

#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>

#include "ui/ui_theme.h"

namespace OrvaneWinUI {

CheckImage::CheckImage(QWidget* parent) : QWidget(parent) {
    setCursor(Qt::PointingHandCursor);
    setFixedSize(sizeHint());
}

void CheckImage::SetChecked(bool checked) {
    if (checked_ != checked) {
        checked_ = checked;
        update();
    }
}

void CheckImage::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF box = QRectF(rect()).adjusted(2, 2, -2, -2);
    painter.setPen(QPen(checked_ ? kConnectedColor : QColor(91, 102, 115), 2));
    painter.setBrush(checked_ ? kConnectedColor : QColor(21, 25, 30));
    painter.drawRoundedRect(box, 5, 5);
    QPainterPath mark;
    mark.moveTo(box.left() + box.width() * 0.24, box.top() + box.height() * 0.52);
    mark.lineTo(box.left() + box.width() * 0.43, box.top() + box.height() * 0.71);
    mark.lineTo(box.left() + box.width() * 0.77, box.top() + box.height() * 0.31);
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(checked_ ? QColor(21, 25, 30) : QColor(91, 102, 115), 2.6, Qt::SolidLine,
                        Qt::RoundCap, Qt::RoundJoin));
    painter.drawPath(mark);
}

void CheckImage::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton && rect().contains(event->position().toPoint())) {
        emit Clicked();
    }
}

}  // namespace OrvaneWinUI
