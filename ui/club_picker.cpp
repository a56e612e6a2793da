#include "ui/club_picker.h"

#include <QComboBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>

namespace OrvaneWinUI {

namespace {

// The style sheet hides the platform's arrow; this one matches the face.
class ChevronComboBox : public QComboBox {
protected:
    void paintEvent(QPaintEvent* event) override {
        QComboBox::paintEvent(event);
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(QPen(isEnabled() ? QColor(169, 180, 192) : QColor(91, 102, 115), 2,
                            Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        const QPointF tip(width() - 16, height() / 2.0 + 3);
        painter.drawPolyline(QPolygonF{tip + QPointF(-5, -5), tip, tip + QPointF(5, -5)});
    }
};

}  // namespace

ClubPicker::ClubPicker(QWidget* parent)
    : QWidget(parent), caption_(new QLabel(tr("CLUB"))), box_(new ChevronComboBox) {
    caption_->setObjectName("caption");
    box_->setCursor(Qt::PointingHandCursor);
    box_->setEnabled(false);
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(caption_);
    layout->addStretch(1);
    layout->addWidget(box_);
    connect(box_, &QComboBox::activated, this,
            [this](int index) { emit ClubChosen(box_->itemData(index).toInt()); });
}

void ClubPicker::SetClubs(const QList<ClubChoice>& clubs) {
    const int current = CurrentClub();
    box_->clear();
    for (const ClubChoice& club : clubs) {
        box_->addItem(club.name, club.code);
    }
    box_->setEnabled(!clubs.isEmpty());
    SetCurrentClub(current);
}

bool ClubPicker::SetCurrentClub(int code) {
    const int index = box_->findData(code);
    box_->setCurrentIndex(index);
    return index >= 0;
}

int ClubPicker::CurrentClub() const {
    return box_->currentIndex() < 0 ? 0 : box_->currentData().toInt();
}

void ClubPicker::SetCaption(const QString& text) {
    caption_->setText(text.toUpper());
}

}  // namespace OrvaneWinUI
