// The main window: hosts the UI control, runs the session with itself as the
// session's UI callback, and owns the orderly shutdown.
#pragma once

#include <QDialog>
#include <QPointer>
#include <atomic>
#include <memory>
#include <string>
#include <thread>

#include "app/deployment.h"
#include "app/version_check.h"
#include "history/history_writer.h"
#include "session/orv_manager.h"

namespace OrvaneWinUI {
class OrvaneUIControl;
}

namespace orv {

class HistoryDialog;
class RecordPreview;
class VersionCheckWorker;

struct MainDlgOptions {
    bool demo = false;  // in-process sensor; the test picture stands in for a missing camera
    bool checkVersion = true;
    VersionCheckConfig versionCheck = DefaultVersionCheckConfig();
    Orvane::OrvManagerConfig session;  // links and timing of the session
};

class CMainDlg : public QDialog, public Orvane::OrvManagerCallback {
    Q_OBJECT
public:
    static constexpr int kWidth = 1040;
    static constexpr int kHeight = 680;

    explicit CMainDlg(MainDlgOptions options, QWidget* parent = nullptr);
    ~CMainDlg() override;

    // Builds the video windows, starts the version check, speech and the session.
    bool OnInitDialog();

    void LoadSettings();
    void SaveSettings();

    OrvaneWinUI::OrvaneUIControl* GetControl() const { return control_; }
    RecordPreview* GetRecordPreview() const { return preview_.get(); }
    // Shows the shot history beside the main window (made on first use).
    HistoryDialog* OpenHistory();

    // Session callbacks, on the session's threads: they only post.
    void OnOrvE6ConnectionChanged(bool connected) override;
    void OnOrvOrvaneConnectionChanged(int state) override;
    void OnOrvOrvaneBatteryState(int percent) override;
    void OnOrvShot() override;
    void OnOrvReady() override {}

    // Asks before closing; true when the teardown has started.
    bool ConfirmClose();
    // Starts the teardown without asking (a quit signal).
    void BeginClose();

signals:
    void ExitDone();

protected:
    bool event(QEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

private:
    void HandleMessage(uint32_t message, intptr_t wParam, intptr_t lParam);
    void OnE6StateChanged(intptr_t connected);
    void OnOrvaneStateChanged(intptr_t state);
    void OnOrvaneBatteryState(intptr_t percent);
    void OnOrvaneExit();
    void OnOrvaneExitDone();
    void OnShot();
    void OnSimulatorClub(intptr_t club);

    void OnRunE6();
    void OnSave();
    void OnManual();
    void OnSupport();
    void OnShowShotOption();
    void OnVersionChecked(const VersionCheckResult& result);

    bool CreateRecordPreview();
    void ReleaseRecordPreview();
    void CloseOrvane();
    void ShowPreviewPerSettings();

    MainDlgOptions options_;
    OrvaneWinUI::OrvaneUIControl* control_ = nullptr;
    std::unique_ptr<RecordPreview> preview_;
    std::unique_ptr<VersionCheckWorker> versionCheck_;
    std::unique_ptr<history::HistoryWriter> history_;
    QPointer<HistoryDialog> historyDialog_;
    std::thread closer_;
    std::atomic<bool> closing_{false};
    bool exitDone_ = false;
    std::string latestFirmwareVersion_;
};

}  // namespace orv
