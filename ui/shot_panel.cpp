#include "ui/shot_panel.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLocale>
#include <QVBoxLayout>

#include <cmath>
#include <cstring>

namespace OrvaneWinUI {

namespace {

struct CellSpec {
    const char* caption;
    const char* unit;  // a symbol, the same in every language
};

constexpr const char* kDegrees = "\u00b0";

constexpr CellSpec kCells[6] = {
    {QT_TRANSLATE_NOOP("OrvaneWinUI::ShotPanel", "BALL SPEED"), "mph"},
    {QT_TRANSLATE_NOOP("OrvaneWinUI::ShotPanel", "LAUNCH"), kDegrees},
    {QT_TRANSLATE_NOOP("OrvaneWinUI::ShotPanel", "DIRECTION"), kDegrees},
    {QT_TRANSLATE_NOOP("OrvaneWinUI::ShotPanel", "BACK SPIN"), "rpm"},
    {QT_TRANSLATE_NOOP("OrvaneWinUI::ShotPanel", "SIDE SPIN"), "rpm"},
    {QT_TRANSLATE_NOOP("OrvaneWinUI::ShotPanel", "HEAD SPEED"), "mph"},
};

}  // namespace

QString ShotFigure(double value, int decimals) {
    QLocale locale;
    // Spin reads as one figure, as on a launch monitor: 2846, not 2,846.
    locale.setNumberOptions(locale.numberOptions() | QLocale::OmitGroupSeparator);
    return locale.toString(value, 'f', decimals);
}

ShotPanel::ShotPanel(QWidget* parent)
    : QFrame(parent),
      title_(new QLabel(tr("LAST SHOT"))),
      club_(new QLabel),
      notice_(new QLabel),
      layout_(new QVBoxLayout(this)) {
    setObjectName("shotPanel");
    title_->setObjectName("caption");
    club_->setObjectName("shotClub");
    layout_->setContentsMargins(18, 14, 18, 16);
    layout_->setSpacing(12);
    auto* head = new QHBoxLayout;
    head->addWidget(title_);
    head->addStretch(1);
    head->addWidget(club_);
    layout_->addLayout(head);

    auto* grid = new QGridLayout;
    grid->setSpacing(10);
    for (int i = 0; i < 6; ++i) {
        auto* frame = new QFrame;
        frame->setObjectName("shotCell");
        auto* cell = new QVBoxLayout(frame);
        cell->setContentsMargins(14, 10, 14, 10);
        cell->setSpacing(2);
        cells_[i] = {new QLabel(tr(kCells[i].caption)), new QLabel,
                     new QLabel(QString::fromUtf8(kCells[i].unit))};
        cells_[i].caption->setObjectName("caption");
        cells_[i].value->setObjectName("shotValue");
        // A degree sign is written as part of the figure; a unit word small beside it.
        const bool degrees = std::strcmp(kCells[i].unit, kDegrees) == 0;
        cells_[i].unit->setObjectName(degrees ? "shotValue" : "shotUnit");
        cell->addWidget(cells_[i].caption);
        auto* figure = new QHBoxLayout;
        figure->setSpacing(degrees ? 0 : 6);
        figure->addWidget(cells_[i].value);
        figure->addWidget(cells_[i].unit, 0, degrees ? Qt::Alignment() : Qt::AlignBottom);
        figure->addStretch(1);
        cell->addLayout(figure);
        grid->addWidget(frame, i / 2, i % 2);
    }
    layout_->addLayout(grid, 1);
    notice_->setObjectName("shotNotice");
    notice_->setWordWrap(true);
    notice_->hide();
    layout_->addWidget(notice_);
    Clear();
}

// Left/right values read as "L 2.1" or "R 2.1" rather than a sign.
QString ShotPanel::Sided(double value, int decimals) {
    const QString magnitude = ShotFigure(std::fabs(value), decimals);
    if (std::round(std::fabs(value) * std::pow(10.0, decimals)) == 0) {
        return magnitude;
    }
    return (value < 0 ? tr("L %1") : tr("R %1")).arg(magnitude);
}

void ShotPanel::SetLastShot(const LastShot& shot) {
    At(ShotValue::kBallSpeed).value->setText(ShotFigure(shot.ballSpeed, 1));
    At(ShotValue::kLaunchAngle).value->setText(ShotFigure(shot.launchAngle, 1));
    At(ShotValue::kDirection).value->setText(Sided(shot.direction, 1));
    At(ShotValue::kBackSpin).value->setText(ShotFigure(shot.backSpin, 0));
    At(ShotValue::kSideSpin).value->setText(Sided(shot.sideSpin, 0));
    At(ShotValue::kHeadSpeed).value->setText(ShotFigure(shot.headSpeed, 1));
    club_->setText(shot.club);
    hasShot_ = true;
}

void ShotPanel::Clear() {
    for (Cell& cell : cells_) {
        cell.value->setText(QStringLiteral("--"));
    }
    club_->clear();
    hasShot_ = false;
}

void ShotPanel::SetNotice(const QString& text) {
    notice_->setText(text);
    notice_->setVisible(!text.isEmpty());
}

QString ShotPanel::NoticeText() const {
    return notice_->text();
}

QString ShotPanel::ValueText(ShotValue value) const {
    return At(value).value->text();
}

QString ShotPanel::ClubText() const {
    return club_->text();
}

void ShotPanel::SetTitle(const QString& text) {
    title_->setText(text.toUpper());
}

void ShotPanel::SetCaption(ShotValue value, const QString& text) {
    At(value).caption->setText(text.toUpper());
}

void ShotPanel::AddFooter(QWidget* widget) {
    layout_->addWidget(widget);
}

}  // namespace OrvaneWinUI
