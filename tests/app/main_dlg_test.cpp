// The main window under a private X display, with the session on the
// in-process sensor and the stand-in simulator.
#include "app/main_dlg.h"

#include <QPushButton>
#include <QRadioButton>

#include "common/settings.h"
#include "common/speech.h"
#include "common/string_res.h"
#include "tests/session/session_fixture.h"
#include "tests/support/file_text.h"
#include "tests/ui/gui_test_app.h"
#include "ui/orvane_ui_control.h"
#include "ui/radio_group.h"
#include "ui/shot_panel.h"
#include "ui/status_label.h"
#include "ui/ui_theme.h"

namespace orv::test {
namespace {

using namespace std::chrono_literals;

// Threads of ours: Qt names its own (event reader, D-Bus, pool), which live
// for the whole process.
int ThreadCount() {
    const std::string self = ReadFileText("/proc/self/comm");
    int count = 0;
    for (const auto& task : std::filesystem::directory_iterator("/proc/self/task")) {
        count += ReadFileText(task.path() / "comm") == self;
    }
    return count;
}

std::string ThreadNames() {
    std::string names;
    for (const auto& task : std::filesystem::directory_iterator("/proc/self/task")) {
        names += ReadFileText(task.path() / "comm");
    }
    return names;
}

class MainDlgTest : public SessionTest {
protected:
    void SetUp() override {
        GuiTestApp();
        SessionTest::SetUp();
        LoadLanguageModule(1033);
        std::ofstream(folder.path() / "settings.ini")
            << "; kept across saves\n[Golf]\nSwingLevel=2\nSwingSensitivity=0\nClubType=1\n"
               "HideShotResult=1\n[Sound]\nEffect=0\n[Camera]\nShowPreview=0\nRecording=1\n";
        OrvSettings::GetInstanceIn(folder.path());
        options.checkVersion = false;
        options.session = config;
        options.session.simulatorPort = port;
    }
    void TearDown() override {
        dialog.reset();
        TTS_DeInit();  // what the window's closing does when the user quits
        Orvane::OrvManager::ReleaseInstance();
        OrvSettings::ReleaseInstance();
        SessionTest::TearDown();
    }
    void Open() {
        dialog = std::make_unique<CMainDlg>(options);
        dialog->OnInitDialog();
        dialog->show();
    }
    OrvaneWinUI::OrvaneUIControl& Control() { return *dialog->GetControl(); }

    TempDir folder;
    MainDlgOptions options;
    std::unique_ptr<CMainDlg> dialog;
};

TEST_F(MainDlgTest, OpensWithTheSettingsAndShowsTheLinksAndShots) {
    options.session.timing.pingInterval = 200ms;  // the battery is asked for on the ping pass
    Open();
    EXPECT_EQ(dialog->size(), QSize(1040, 680));
    EXPECT_EQ(dialog->windowTitle(), "OrvaneWin");
    EXPECT_EQ(Control().radioGroupSwingLv->SelectedIndex(), 2);
    EXPECT_EQ(Control().radioGroupSwingSens->SelectedIndex(), 0);
    EXPECT_EQ(Control().radioGroupClub->SelectedIndex(), 1);
    EXPECT_EQ(Control().radioGroupEffect->SelectedIndex(), 1);
    EXPECT_EQ(Control().radioGroupShowShotResult->SelectedIndex(), 1);
    EXPECT_EQ(Control().radioGroupCameraPreview->SelectedIndex(), 1);
    EXPECT_EQ(Control().radioGroupSwingRecord->SelectedIndex(), 0);

    const QString simulatorUp = QString::fromStdString(GetStringRes(176));
    const QString sensorUp = QString::fromStdString(GetStringRes(163));
    ASSERT_TRUE(ProcessEventsUntil([&] {
        return Control().lbE6Conn->text() == simulatorUp &&
               Control().lbOrvaneConn->text() == sensorUp;
    }));
    EXPECT_EQ(Control().lbE6Conn->TextColor(), OrvaneWinUI::kConnectedColor);
    EXPECT_EQ(Control().lbOrvaneConn->TextColor(), OrvaneWinUI::kConnectedColor);
    EXPECT_EQ(Control().lbFwVer->text(), "1.2.0");

    sensor->TriggerSwing(DriverSwing());
    ASSERT_TRUE(ProcessEventsUntil([&] { return Control().shotPanel->HasShot(); }));
    EXPECT_EQ(Control().shotPanel->ClubText(), "Driver");
    ASSERT_TRUE(emulator->WaitForShots(1, 10s));
    ASSERT_TRUE(ProcessEventsUntil([&] {
        return Control().lbBattery->text() == QStringLiteral("%1%").arg(sensor->Battery());
    }));
    dialog->grab().save(QStringLiteral(ORVANE_SCREENSHOT_DIR "/main-window.png"));

    // The simulator going away shows at once.
    emulator->Stop();
    ASSERT_TRUE(ProcessEventsUntil(
        [&] { return Control().lbE6Conn->text() == QString::fromStdString(GetStringRes(177)); }));
    EXPECT_EQ(Control().lbE6Conn->TextColor(), OrvaneWinUI::kDisconnectedColor);
}

TEST_F(MainDlgTest, SaveWritesTheFile) {
    Open();
    Control().radioGroupSwingLv->Choice(0)->click();
    Control().radioGroupCameraPreview->Choice(0)->click();
    {
        MessageBoxAnswerer answer(QMessageBox::Ok);
        Control().btnSave->click();
        EXPECT_TRUE(answer.seen().seen);
        EXPECT_EQ(answer.seen().text, QString::fromStdString(GetStringRes(166)));
    }
    const std::string saved = ReadFileText(folder.path() / "settings.ini");
    EXPECT_NE(saved.find("SwingLevel=0"), std::string::npos) << saved;
    EXPECT_NE(saved.find("ShowPreview=1"), std::string::npos) << saved;
    EXPECT_NE(saved.find("; kept across saves"), std::string::npos) << saved;
}

TEST_F(MainDlgTest, CancelKeepsRunningAndOkTearsDownInOrder) {
    const int threadsBefore = ThreadCount();
    Open();
    ASSERT_TRUE(ProcessEventsUntil([&] {
        return Control().lbOrvaneConn->text() == QString::fromStdString(GetStringRes(163));
    }));
    {
        MessageBoxAnswerer answer(QMessageBox::Cancel);
        dialog->close();
        EXPECT_TRUE(answer.seen().seen);
        EXPECT_EQ(answer.seen().text, QString::fromStdString(GetStringRes(167)));
    }
    QCoreApplication::processEvents();
    EXPECT_TRUE(dialog->isVisible());
    sensor->TriggerSwing(DriverSwing());
    ASSERT_TRUE(emulator->WaitForShots(1, 10s));

    bool done = false;
    QObject::connect(dialog.get(), &CMainDlg::ExitDone, [&] { done = true; });
    {
        MessageBoxAnswerer answer(QMessageBox::Ok);
        dialog->close();
        EXPECT_TRUE(Control().IsWaitingDlgShown());
    }
    ASSERT_TRUE(ProcessEventsUntil([&] { return done; }));
    EXPECT_FALSE(Control().IsWaitingDlgShown());
    EXPECT_FALSE(dialog->isVisible());
    // The session let go of both links when it was released, and joined its threads.
    EXPECT_TRUE(emulator->WaitForClientGone(5s));
    // The camera monitor's thread stays for the life of the process; everything
    // of the session is gone.
    EXPECT_TRUE(Eventually([&] { return ThreadCount() <= threadsBefore + 1; }))
        << ThreadCount() << " threads, " << threadsBefore << " before: " << ThreadNames();
}

}  // namespace
}  // namespace orv::test
