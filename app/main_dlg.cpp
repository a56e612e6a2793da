#include "app/main_dlg.h"

#include <QCloseEvent>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QLineEdit>
#include <QLocale>
#include <QMessageBox>
#include <QScreen>
#include <QVBoxLayout>

#include "app/ble_backend.h"
#include "app/deployment.h"
#include "app/help_links.h"
#include "app/history_dialog.h"
#include "app/orvane_win_app.h"
#include "app/posted_message.h"
#include "app/record_preview.h"
#include "app/shot_text.h"
#include "app/simulator_host.h"
#include "app/simulator_launcher.h"
#include "app/version_check_worker.h"
#include "common/debug_log.h"
#include "common/settings.h"
#include "common/speech.h"
#include "common/string_res.h"
#include "ui/orvane_ui_control.h"
#include "ui/radio_group.h"
#include "ui/shot_panel.h"
#include "ui/status_label.h"
#include "ui/ui_theme.h"
#include "video/window_placement.h"

namespace orv {

namespace {

QString Res(unsigned id) {
    return QString::fromStdString(GetStringRes(id));
}

// Show and hide commands of the preview window.
constexpr int kShow = 5;
constexpr int kHide = 0;

bool IsEnterOrEscape(const QEvent* event) {
    if (event->type() != QEvent::KeyPress && event->type() != QEvent::KeyRelease &&
        event->type() != QEvent::ShortcutOverride) {
        return false;
    }
    const int key = static_cast<const QKeyEvent*>(event)->key();
    return key == Qt::Key_Return || key == Qt::Key_Enter || key == Qt::Key_Escape;
}

}  // namespace

CMainDlg::CMainDlg(MainDlgOptions options, QWidget* parent)
    : QDialog(parent), options_(std::move(options)) {
    setWindowTitle(QStringLiteral("OrvaneWin"));
    setWindowFlags(Qt::Window | Qt::WindowMinimizeButtonHint | Qt::WindowCloseButtonHint);
    control_ = new OrvaneWinUI::OrvaneUIControl(this);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(control_);
    // Enter and Escape never close the dialog, wherever the focus is inside it.
    qApp->installEventFilter(this);
}

CMainDlg::~CMainDlg() {
    qApp->removeEventFilter(this);
    if (closer_.joinable()) {
        closer_.join();
    }
    ReleaseRecordPreview();
}

bool CMainDlg::OnInitDialog() {
    if (!CreateRecordPreview()) {
        ReleaseRecordPreview();
    }
    setWindowIcon(QIcon::fromTheme(QStringLiteral(ORVANE_APP_ID),
                                   QIcon::fromTheme(QStringLiteral("applications-games"))));

    // Centred in the work area at the fixed size.
    const QRect area = QGuiApplication::primaryScreen()->availableGeometry();
    setGeometry(PlaceInWorkArea(area, {(area.width() - kWidth) / 2, (area.height() - kHeight) / 2},
                                {kWidth, kHeight}));

    control_->SetClubs(ClubChoices());
    OnE6StateChanged(0);
    OnOrvaneStateChanged(0);

    connect(control_, &OrvaneWinUI::OrvaneUIControl::ExitClicked, this, [this] { close(); });
    connect(control_, &OrvaneWinUI::OrvaneUIControl::StartClicked, this, [this] { OnRunE6(); });
    connect(control_, &OrvaneWinUI::OrvaneUIControl::SaveClicked, this, [this] { OnSave(); });
    connect(control_, &OrvaneWinUI::OrvaneUIControl::ManualClicked, this, [this] { OnManual(); });
    connect(control_, &OrvaneWinUI::OrvaneUIControl::SupportClicked, this, [this] { OnSupport(); });
    connect(control_, &OrvaneWinUI::OrvaneUIControl::ShowShotYesClicked, this,
            [this] { OnShowShotOption(); });
    connect(control_, &OrvaneWinUI::OrvaneUIControl::ShowShotNoClicked, this,
            [this] { OnShowShotOption(); });
    connect(control_, &OrvaneWinUI::OrvaneUIControl::HistoryClicked, this,
            [this] { OpenHistory(); });
    connect(control_, &OrvaneWinUI::OrvaneUIControl::ClubChangeRequested, this,
            [this](int club) { PostMessageTo(this, WM_SIMULATOR_CLUB, 0, club); });

    if (options_.checkVersion) {
        versionCheck_ = std::make_unique<VersionCheckWorker>(options_.versionCheck);
        connect(versionCheck_.get(), &VersionCheckWorker::Finished, this,
                [this](const VersionCheckResult& result) { OnVersionChecked(result); });
        versionCheck_->Start();
    }

    TTS_Init();

    Orvane::OrvManager* manager = Orvane::OrvManager::GetInstance();
    Orvane::OrvManagerConfig config = WithSimulatorHost(options_.session);
    if (!config.makeBleStack) {
        config.makeBleStack = ChooseBleBackend(options_.demo);
    }
    manager->SetConfig(std::move(config));
    manager->SetCallback(this);
    manager->SetRecordingControl(preview_ ? preview_->Recorder() : nullptr);
    history_ = std::make_unique<history::HistoryWriter>(HistoryFile());
    history_->Start();
    manager->SetShotListener(history_.get());
    manager->Start();

    LoadSettings();
    return true;
}

bool CMainDlg::CreateRecordPreview() {
    OrvSettings* settings = OrvSettings::GetInstance();
    preview_ = RecordPreview::Create(this, options_.demo, settings->GetFolder(),
                                     [settings] { return settings->recording.load(); });
    return preview_ != nullptr;
}

void CMainDlg::ReleaseRecordPreview() {
    preview_.reset();
}

void CMainDlg::ShowPreviewPerSettings() {
    if (preview_) {
        preview_->StartPreview(OrvSettings::GetInstance()->showPreview ? kShow : kHide);
    }
}

void CMainDlg::LoadSettings() {
    OrvSettings* settings = OrvSettings::GetInstance();
    control_->radioGroupSwingLv->SetSelectedIndex(settings->GetDifficulty());
    control_->radioGroupSwingSens->SetSelectedIndex(settings->GetSensitivity());
    control_->radioGroupEffect->SetSelectedIndex(settings->effectSound ? 0 : 1);
    control_->radioGroupClub->SetSelectedIndex(settings->GetClubType());
    control_->radioGroupShowShotResult->SetSelectedIndex(settings->hideShotResult ? 1 : 0);
    control_->radioGroupCameraPreview->SetSelectedIndex(settings->showPreview ? 0 : 1);
    control_->radioGroupSwingRecord->SetSelectedIndex(settings->recording ? 0 : 1);
    control_->tbE6Host->setText(QString::fromStdString(settings->GetSimulatorHost()));
    ShowPreviewPerSettings();
}

void CMainDlg::SaveSettings() {
    OrvSettings* settings = OrvSettings::GetInstance();
    settings->SetDifficulty(control_->radioGroupSwingLv->SelectedIndex());
    settings->SetSensitivity(control_->radioGroupSwingSens->SelectedIndex());
    settings->effectSound = control_->radioGroupEffect->SelectedIndex() == 0;
    settings->SetClubType(control_->radioGroupClub->SelectedIndex());
    settings->hideShotResult = control_->radioGroupShowShotResult->SelectedIndex() != 0;
    settings->showPreview = control_->radioGroupCameraPreview->SelectedIndex() == 0;
    settings->recording = control_->radioGroupSwingRecord->SelectedIndex() == 0;
    const std::string host = control_->tbE6Host->text().trimmed().toStdString();
    // Only a changed host moves the link; an unchanged one leaves it alone.
    const bool hostChanged = host != settings->GetSimulatorHost();
    settings->SetSimulatorHost(host);
    settings->SaveSetting();
    Orvane::OrvManager::GetInstance()->ChangeSettings();
    if (hostChanged) {
        Orvane::OrvManager::GetInstance()->ChangeSimulatorHost(host);
    }
    ShowPreviewPerSettings();
}

void CMainDlg::OnOrvE6ConnectionChanged(bool connected) {
    PostMessageTo(this, WM_ORV_E6_STATE, 0, connected ? 1 : 0);
}

void CMainDlg::OnOrvOrvaneConnectionChanged(int state) {
    PostMessageTo(this, WM_ORV_ORVANE_STATE, 0, state);
}

void CMainDlg::OnOrvOrvaneBatteryState(int percent) {
    PostMessageTo(this, WM_ORV_BATTERY, 0, percent);
}

void CMainDlg::OnOrvShot() {
    PostMessageTo(this, WM_ORV_SHOT, 0, 0);
}

bool CMainDlg::event(QEvent* event) {
    if (event->type() == PostedMessage::Type()) {
        const auto* posted = static_cast<const PostedMessage*>(event);
        HandleMessage(posted->Message(), posted->WParam(), posted->LParam());
        return true;
    }
    return QDialog::event(event);
}

bool CMainDlg::eventFilter(QObject* watched, QEvent* event) {
    // Message boxes and the other windows keep the two keys: they answer questions.
    if (IsEnterOrEscape(event) && watched->isWidgetType() &&
        static_cast<QWidget*>(watched)->window() == this) {
        return true;
    }
    return QDialog::eventFilter(watched, event);
}

void CMainDlg::HandleMessage(uint32_t message, intptr_t /*wParam*/, intptr_t lParam) {
    switch (message) {
        case WM_ORV_E6_STATE:
            OnE6StateChanged(lParam);
            break;
        case WM_ORV_ORVANE_STATE:
            OnOrvaneStateChanged(lParam);
            break;
        case WM_ORV_BATTERY:
            OnOrvaneBatteryState(lParam);
            break;
        case WM_ORV_EXIT:
            OnOrvaneExit();
            break;
        case WM_ORV_EXIT_DONE:
            OnOrvaneExitDone();
            break;
        case WM_ORV_SHOT:
            OnShot();
            break;
        case WM_SIMULATOR_CLUB:
            OnSimulatorClub(lParam);
            break;
        default:
            break;
    }
}

void CMainDlg::OnE6StateChanged(intptr_t connected) {
    control_->lbE6Conn->SetStatus(
        Res(connected == 1 ? 176 : 177),
        connected == 1 ? OrvaneWinUI::kConnectedColor : OrvaneWinUI::kDisconnectedColor);
}

void CMainDlg::OnOrvaneStateChanged(intptr_t state) {
    static constexpr unsigned kLabels[] = {164, 181, 182, 163};
    if (state < 0 || state > 3) {
        return;
    }
    control_->lbOrvaneConn->SetStatus(Res(kLabels[state]), state == 3
                                                               ? OrvaneWinUI::kConnectedColor
                                                               : OrvaneWinUI::kDisconnectedColor);
    // The session is gone once closing has begun.
    if (state != 3 || closing_) {
        return;
    }
    const std::string device = Orvane::OrvManager::GetInstance()->GetDeviceVersion();
    control_->lbFwVer->SetText(QString::fromStdString(device));
    if (ShouldOfferFirmwareUpdate(device, latestFirmwareVersion_)) {
        InformAndOpen(this, Res(175), HelpPageUrl(DefaultWebSite(), HelpPage::kFirmware));
    }
}

void CMainDlg::OnOrvaneBatteryState(intptr_t percent) {
    const QLocale locale;
    control_->lbBattery->SetText(locale.toString(static_cast<int>(percent)) + locale.percent());
}

void CMainDlg::OnShot() {
    if (closing_) {
        return;
    }
    const Orvane::LastShotInfo shot = Orvane::OrvManager::GetInstance()->GetLastShot();
    control_->SetCurrentClub(shot.club);
    if (shot.outcome == Orvane::ShotOutcome::kRefusedNotFinite) {
        // No figures to show: say why nothing happened.
        control_->shotPanel->SetNotice(tr("Shot not sent: the simulator named no known club"));
        return;
    }
    control_->shotPanel->SetNotice({});
    OrvaneWinUI::LastShot figures;
    figures.club = ClubName(shot.club);
    figures.ballSpeed = shot.ball.BallSpeed;
    figures.launchAngle = shot.ball.LaunchAngle;
    figures.direction = shot.ball.LaunchDirection;
    figures.backSpin = shot.ball.BackSpin;
    figures.sideSpin = shot.ball.SideSpin;
    figures.headSpeed = shot.clubData.ClubHeadSpeed;
    control_->SetLastShot(figures);
    if (historyDialog_) {
        historyDialog_->Reload();
    }
}

HistoryDialog* CMainDlg::OpenHistory() {
    if (!historyDialog_) {
        historyDialog_ = new HistoryDialog(HistoryFile(), history_ ? history_->Session() : 0, this);
        historyDialog_->setAttribute(Qt::WA_DeleteOnClose);
    }
    historyDialog_->show();
    historyDialog_->raise();
    return historyDialog_;
}

void CMainDlg::OnSimulatorClub(intptr_t club) {
    if (closing_) {
        return;
    }
    Orvane::OrvManager::GetInstance()->ChangeClub(static_cast<int>(club), true);
}

void CMainDlg::OnRunE6() {
    SaveSettings();
    const OrvSettings* settings = OrvSettings::GetInstance();
    const SimulatorStartResult started = StartSimulator(
        {settings->GetSimulatorPath("DefaultPath"), settings->GetSimulatorPath("WinePrefix"),
         settings->GetSimulatorPath("LaunchCommand")});
    const QString settingsFile = QString::fromStdString(settings->GetIniPath().string());
    switch (started.status) {
        case SimulatorStart::kStarted:
            break;
        case SimulatorStart::kNotInstalled:
            AskPlainAndOpen(this, Res(161), HelpPageUrl(DefaultWebSite(), HelpPage::kSimulator));
            break;
        case SimulatorStart::kNoWine:
            QMessageBox::warning(this, windowTitle(), Res(190).arg(settingsFile));
            break;
        case SimulatorStart::kFailed:
            QMessageBox::warning(
                this, windowTitle(),
                Res(191).arg(QString::fromStdString(started.starter), settingsFile));
            break;
    }
}

void CMainDlg::OnSave() {
    SaveSettings();
    QMessageBox::information(this, windowTitle(), Res(166));
}

void CMainDlg::OnManual() {
    AskAndOpen(this, Res(178), HelpPageUrl(DefaultWebSite(), HelpPage::kUserGuide));
}

void CMainDlg::OnSupport() {
    AskAndOpen(this, Res(173), HelpPageUrl(DefaultWebSite(), HelpPage::kSupport));
}

void CMainDlg::OnShowShotOption() {
    QMessageBox::information(this, windowTitle(), Res(180));
}

void CMainDlg::OnVersionChecked(const VersionCheckResult& result) {
    if (result.status != VersionCheckStatus::kOk || closing_) {
        return;
    }
    latestFirmwareVersion_ = result.latest.latestFirmwareVersion;
    if (ShouldOfferAppUpdate(result)) {
        AskAndOpen(this, Res(174), result.latest.appDownloadUrl);
    }
}

bool CMainDlg::ConfirmClose() {
    if (closing_) {
        return true;
    }
    TTS_Speak(GetStringRes(167));
    // OK is the default button, so Enter confirms and Escape cancels.
    if (QMessageBox::question(this, windowTitle(), Res(167), QMessageBox::Ok | QMessageBox::Cancel,
                              QMessageBox::Ok) != QMessageBox::Ok) {
        return false;
    }
    BeginClose();
    return true;
}

void CMainDlg::BeginClose() {
    if (closing_.exchange(true)) {
        return;
    }
    // A version server that never answers must not hold the window up.
    if (versionCheck_) {
        versionCheck_->Cancel();
    }
    PostMessageTo(this, WM_ORV_EXIT, 0, 0);
    control_->ShowWaitingDlg();
}

void CMainDlg::closeEvent(QCloseEvent* event) {
    // The window goes only once the session is down (WM_ORV_EXIT_DONE).
    if (exitDone_) {
        event->accept();
        return;
    }
    event->ignore();
    ConfirmClose();
}

void CMainDlg::OnOrvaneExit() {
    // The link teardown takes a moment; the UI thread keeps pumping meanwhile.
    closer_ = std::thread([this] { CloseOrvane(); });
}

void CMainDlg::CloseOrvane() {
    TTS_DeInit();
    Orvane::OrvManager::ReleaseInstance();
    if (history_) {
        history_->Stop();
    }
    OrvSettings::ReleaseInstance();
    PostMessageTo(this, WM_ORV_EXIT_DONE, 0, 0);
}

void CMainDlg::OnOrvaneExitDone() {
    if (closer_.joinable()) {
        closer_.join();
    }
    control_->HideWaitingDlg();
    exitDone_ = true;
    versionCheck_.reset();
    ReleaseRecordPreview();
    emit ExitDone();
    close();
}

}  // namespace orv
