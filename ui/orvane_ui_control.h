// The face of the program: connection states, settings, the last shot and the
// buttons. It holds no device logic: the dialog fills it and reacts to its
// signals. Its member names are the ones the dialog uses.
#pragma once

#include <QList>
#include <QWidget>

#include "ui/club_picker.h"
#include "ui/shot_panel.h"
#include "ui/ui_export.h"

class QLabel;
class QLineEdit;
class QPushButton;

namespace OrvaneWinUI {

class CheckImage;
class RadioGroup;
class StatusLabel;
class WaitingOverlay;

class ORVANE_UI_EXPORT OrvaneUIControl : public QWidget {
    Q_OBJECT
public:
    static constexpr int kWidth = 1040;
    static constexpr int kHeight = 680;

    explicit OrvaneUIControl(QWidget* parent = nullptr);
    QSize sizeHint() const override { return {kWidth, kHeight}; }

    // Covers the control with "please wait" while the event loop runs on.
    void ShowWaitingDlg();
    void HideWaitingDlg();
    bool IsWaitingDlgShown() const;

    void SetLastShot(const LastShot& shot);
    void SetClubs(const QList<ClubChoice>& clubs);
    // The sensor's current club; does not ask for a change.
    void SetCurrentClub(int code);

    QPushButton* btnExit;
    QPushButton* btnStart;  // starts the simulator
    QPushButton* btnSave;
    QPushButton* btnManual;
    QPushButton* btnSupport;
    QPushButton* btnHistory;  // beside the last shot: opens the shot history

    // Beside the two choices of radioGroupShowShotResult; lit for the selected one.
    CheckImage* ckShowShotYes;
    CheckImage* ckShowShotNo;

    RadioGroup* radioGroupSwingLv;         // 3 levels
    RadioGroup* radioGroupSwingSens;       // 3 sensitivities
    RadioGroup* radioGroupEffect;          // on, off
    RadioGroup* radioGroupClub;            // swing stick, real club
    RadioGroup* radioGroupShowShotResult;  // yes, no
    RadioGroup* radioGroupCameraPreview;   // index 0 = on
    RadioGroup* radioGroupSwingRecord;     // index 0 = on

    // The computer the simulator runs on; empty for this one.
    QLineEdit* tbE6Host;

    StatusLabel* lbE6Conn;
    StatusLabel* lbOrvaneConn;
    StatusLabel* lbFwVer;
    StatusLabel* lbBattery;
    // Captions above the four states.
    QLabel* lbE6Caption;
    QLabel* lbOrvaneCaption;
    QLabel* lbFwCaption;
    QLabel* lbBatteryCaption;

    ClubPicker* clubPicker;
    ShotPanel* shotPanel;
    WaitingOverlay* waitingDlg;

signals:
    void ExitClicked();
    void StartClicked();
    void SaveClicked();
    void ManualClicked();
    void SupportClicked();
    void HistoryClicked();
    void ShowShotYesClicked();
    void ShowShotNoClicked();
    // The user asks the dialog to change the sensor's club.
    void ClubChangeRequested(int club);

private:
    QWidget* MakeHeader();
    QWidget* MakeSettings();
    QWidget* MakeHostCard();
    QWidget* MakeFooter();
};

}  // namespace OrvaneWinUI
