#include "ui/orvane_ui_control.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include "ui/check_image.h"
#include "ui/radio_group.h"
#include "ui/status_label.h"
#include "ui/ui_theme.h"
#include "ui/waiting_overlay.h"

namespace OrvaneWinUI {

namespace {

QPushButton* MakeButton(const QString& text, const char* role) {
    auto* button = new QPushButton(text);
    button->setObjectName(role);
    button->setCursor(Qt::PointingHandCursor);
    button->setAutoDefault(false);
    return button;
}

// A caption above a large state.
QFrame* MakeTile(QLabel** caption, StatusLabel** value, const QString& captionText,
                 const QString& text, const QColor& color, int minimumWidth) {
    auto* tile = new QFrame;
    tile->setObjectName("tile");
    tile->setMinimumWidth(minimumWidth);
    auto* layout = new QVBoxLayout(tile);
    layout->setContentsMargins(16, 10, 16, 10);
    layout->setSpacing(2);
    *caption = new QLabel(captionText);
    (*caption)->setObjectName("caption");
    *value = new StatusLabel(text, color);
    layout->addWidget(*caption);
    layout->addWidget(*value);
    return tile;
}

}  // namespace

OrvaneUIControl::OrvaneUIControl(QWidget* parent) : QWidget(parent) {
    setObjectName("OrvaneUIControl");
    setAttribute(Qt::WA_StyledBackground);
    setStyleSheet(ControlStyleSheet());
    resize(kWidth, kHeight);

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(20, 18, 20, 18);
    layout->setSpacing(16);
    layout->addWidget(MakeHeader());

    auto* body = new QHBoxLayout;
    body->setSpacing(16);
    body->addWidget(MakeSettings(), 3);
    shotPanel = new ShotPanel;
    clubPicker = new ClubPicker;
    shotPanel->AddFooter(clubPicker);
    btnHistory = MakeButton(tr("History"), "quiet");
    shotPanel->AddFooter(btnHistory);
    body->addWidget(shotPanel, 2);
    layout->addLayout(body, 1);
    layout->addWidget(MakeFooter());

    waitingDlg = new WaitingOverlay(this);

    connect(btnExit, &QPushButton::clicked, this, &OrvaneUIControl::ExitClicked);
    connect(btnStart, &QPushButton::clicked, this, &OrvaneUIControl::StartClicked);
    connect(btnSave, &QPushButton::clicked, this, &OrvaneUIControl::SaveClicked);
    connect(btnManual, &QPushButton::clicked, this, &OrvaneUIControl::ManualClicked);
    connect(btnSupport, &QPushButton::clicked, this, &OrvaneUIControl::SupportClicked);
    connect(btnHistory, &QPushButton::clicked, this, &OrvaneUIControl::HistoryClicked);
    connect(ckShowShotYes, &CheckImage::Clicked, this, &OrvaneUIControl::ShowShotYesClicked);
    connect(ckShowShotNo, &CheckImage::Clicked, this, &OrvaneUIControl::ShowShotNoClicked);
    connect(clubPicker, &ClubPicker::ClubChosen, this, &OrvaneUIControl::ClubChangeRequested);
    const auto showShotImages = [this](int index) {
        ckShowShotYes->SetChecked(index == 0);
        ckShowShotNo->SetChecked(index == 1);
    };
    connect(radioGroupShowShotResult, &RadioGroup::SelectedIndexChanged, this, showShotImages);
    showShotImages(radioGroupShowShotResult->SelectedIndex());
}

QWidget* OrvaneUIControl::MakeHeader() {
    auto* header = new QWidget;
    auto* layout = new QHBoxLayout(header);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(10);

    auto* brand = new QVBoxLayout;
    brand->setSpacing(0);
    auto* name = new QLabel(QStringLiteral("ORVANE X"));
    name->setObjectName("brand");
    auto* sub = new QLabel(tr("Swing sensor for E6"));
    sub->setObjectName("brandSub");
    brand->addStretch(1);
    brand->addWidget(name);
    brand->addWidget(sub);
    brand->addStretch(1);
    layout->addLayout(brand);
    layout->addStretch(1);

    // Connection states get the room of their longest word; longer texts
    // widen the tile into the space beside the name.
    layout->addWidget(MakeTile(&lbE6Caption, &lbE6Conn, tr("E6 SIMULATOR"), tr("Disconnected"),
                               kDisconnectedColor, 212));
    layout->addWidget(MakeTile(&lbOrvaneCaption, &lbOrvaneConn, tr("SENSOR"), tr("Disconnected"),
                               kDisconnectedColor, 212));
    layout->addWidget(MakeTile(&lbBatteryCaption, &lbBattery, tr("BATTERY"), QStringLiteral("--"),
                               kValueColor, 128));
    layout->addWidget(
        MakeTile(&lbFwCaption, &lbFwVer, tr("FIRMWARE"), QStringLiteral("--"), kValueColor, 128));
    return header;
}

QWidget* OrvaneUIControl::MakeSettings() {
    auto* settings = new QWidget;
    auto* grid = new QGridLayout(settings);
    grid->setContentsMargins(0, 0, 0, 0);
    grid->setSpacing(12);
    radioGroupSwingLv =
        new RadioGroup(tr("Swing level"), {tr("Easy"), tr("Normal", "swing level"), tr("Pro")});
    radioGroupSwingSens = new RadioGroup(tr("Swing sensitivity"),
                                         {tr("Low"), tr("Normal", "sensitivity"), tr("High")});
    radioGroupClub = new RadioGroup(tr("Club type"), {tr("Swing stick"), tr("Real club")});
    radioGroupEffect = new RadioGroup(tr("Sound effects"), {tr("On"), tr("Off")});
    radioGroupCameraPreview = new RadioGroup(tr("Camera preview"), {tr("On"), tr("Off")});
    radioGroupSwingRecord = new RadioGroup(tr("Swing recording"), {tr("On"), tr("Off")});
    radioGroupShowShotResult = new RadioGroup(tr("Show shot result"), {tr("Yes"), tr("No")});
    ckShowShotYes = new CheckImage;
    ckShowShotNo = new CheckImage;
    radioGroupShowShotResult->AttachToChoice(0, ckShowShotYes);
    radioGroupShowShotResult->AttachToChoice(1, ckShowShotNo);
    grid->addWidget(radioGroupSwingLv, 0, 0);
    grid->addWidget(radioGroupSwingSens, 0, 1);
    grid->addWidget(radioGroupClub, 1, 0);
    grid->addWidget(radioGroupEffect, 1, 1);
    grid->addWidget(radioGroupCameraPreview, 2, 0);
    grid->addWidget(radioGroupSwingRecord, 2, 1);
    grid->addWidget(radioGroupShowShotResult, 3, 0);
    grid->addWidget(MakeHostCard(), 3, 1);
    for (RadioGroup* group :
         {radioGroupSwingLv, radioGroupSwingSens, radioGroupClub, radioGroupEffect,
          radioGroupCameraPreview, radioGroupSwingRecord, radioGroupShowShotResult}) {
        group->SetSelectedIndex(0);
    }
    radioGroupSwingLv->SetSelectedIndex(1);
    radioGroupSwingSens->SetSelectedIndex(1);
    return settings;
}

QWidget* OrvaneUIControl::MakeHostCard() {
    auto* card = new QFrame;
    card->setObjectName("card");
    auto* layout = new QVBoxLayout(card);
    layout->setContentsMargins(16, 12, 16, 12);
    layout->setSpacing(8);
    auto* caption = new QLabel(tr("SIMULATOR COMPUTER"));
    caption->setObjectName("caption");
    tbE6Host = new QLineEdit;
    tbE6Host->setPlaceholderText(tr("This computer"));
    tbE6Host->setToolTip(tr("Host name or IPv4 address of the computer running E6"));
    caption->setBuddy(tbE6Host);
    layout->addStretch(1);
    layout->addWidget(caption);
    layout->addWidget(tbE6Host);
    layout->addStretch(1);
    return card;
}

QWidget* OrvaneUIControl::MakeFooter() {
    auto* footer = new QWidget;
    auto* layout = new QHBoxLayout(footer);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(12);
    btnManual = MakeButton(tr("User guide"), "quiet");
    btnSupport = MakeButton(tr("Support"), "quiet");
    btnSave = MakeButton(tr("Save"), "");
    btnStart = MakeButton(tr("Start E6"), "primary");
    btnExit = MakeButton(tr("Exit"), "");
    layout->addWidget(btnManual);
    layout->addWidget(btnSupport);
    layout->addStretch(1);
    layout->addWidget(btnSave);
    layout->addWidget(btnStart);
    layout->addWidget(btnExit);
    return footer;
}

void OrvaneUIControl::ShowWaitingDlg() {
    waitingDlg->ShowOverlay();
}

void OrvaneUIControl::HideWaitingDlg() {
    waitingDlg->HideOverlay();
}

bool OrvaneUIControl::IsWaitingDlgShown() const {
    return waitingDlg->isVisible();
}

void OrvaneUIControl::SetLastShot(const LastShot& shot) {
    shotPanel->SetLastShot(shot);
}

void OrvaneUIControl::SetClubs(const QList<ClubChoice>& clubs) {
    clubPicker->SetClubs(clubs);
}

void OrvaneUIControl::SetCurrentClub(int code) {
    clubPicker->SetCurrentClub(code);
}

}  // namespace OrvaneWinUI
