// The main window driven from the keyboard alone, as a keyboard-only user has it.
#include <QPushButton>
#include <QTest>
#include <QTimer>

#include <fstream>

#include "app/main_dlg.h"
#include "common/settings.h"
#include "common/speech.h"
#include "common/string_res.h"
#include "tests/app/https_test_server.h"
#include "tests/common/env_var.h"
#include "tests/session/session_fixture.h"
#include "tests/ui/gui_test_app.h"
#include "ui/orvane_ui_control.h"

namespace orv::test {
namespace {

using namespace std::chrono_literals;

// Runs `open` and answers the message box that it opens with a key press, as
// a keyboard-only user does; the box's text, or null when none opened.
QString AnswerByKey(Qt::Key key, const std::function<void()>& open) {
    QString text;
    QObject context;
    QTimer::singleShot(0, &context, [&] {
        if (auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget())) {
            text = box->text();
            QTest::keyClick(box, key);
        }
    });
    open();
    QCoreApplication::processEvents();
    return text;
}

QString Res(unsigned id) {
    return QString::fromStdString(GetStringRes(id));
}

class MainDlgKeysTest : public SessionTest {
protected:
    void SetUp() override {
        GuiTestApp();
        SessionTest::SetUp();
        LoadLanguageModule(1033);
        options.checkVersion = false;
        options.session = config;
        options.session.simulatorPort = port;
    }
    void TearDown() override {
        dialog.reset();
        TTS_DeInit();
        Orvane::OrvManager::ReleaseInstance();
        OrvSettings::ReleaseInstance();
        SessionTest::TearDown();
    }
    void Open() {
        OrvSettings::GetInstanceIn(folder.path());
        dialog = std::make_unique<CMainDlg>(options);
        dialog->OnInitDialog();
        dialog->show();
    }

    TempDir folder;
    MainDlgOptions options;
    std::unique_ptr<CMainDlg> dialog;
};

TEST_F(MainDlgKeysTest, QuitQuestionByKeysAndClosingCancelsASilentVersionCheck) {
    // Takes the connection and never starts TLS: without a cancel the window
    // would stay until the connect time-out.
    MuteServer mute;
    options.checkVersion = true;
    options.versionCheck.host = "127.0.0.1";
    options.versionCheck.port = mute.port();
    options.versionCheck.timing = {30s, 60s};
    const auto opened = std::chrono::steady_clock::now();
    Open();
    ASSERT_TRUE(Eventually([&] { return mute.Accept(); }));

    // The main window itself ignores both keys; its question answers to them.
    EXPECT_TRUE(AnswerByKey(Qt::Key_Escape, [&] {
                    for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Enter, Qt::Key_Escape}) {
                        QTest::keyClick(dialog.get(), key);
                        QTest::keyClick(dialog->GetControl()->btnExit, key);
                    }
                }).isNull());
    EXPECT_EQ(AnswerByKey(Qt::Key_Escape, [&] { dialog->close(); }), Res(167));
    EXPECT_FALSE(dialog->GetControl()->IsWaitingDlgShown());
    EXPECT_TRUE(dialog->isVisible());

    bool done = false;
    QObject::connect(dialog.get(), &CMainDlg::ExitDone, [&] { done = true; });
    EXPECT_EQ(AnswerByKey(Qt::Key_Return, [&] { dialog->close(); }), Res(167));
    EXPECT_TRUE(ProcessEventsUntil([&] { return done; }, 40s));
    EXPECT_FALSE(dialog->isVisible());
    EXPECT_LT(std::chrono::steady_clock::now() - opened, options.versionCheck.timing.connect);
}

TEST_F(MainDlgKeysTest, StartE6ThatCannotStartTellsTheUser) {
    ASSERT_FALSE(Res(190).isEmpty());
    const std::filesystem::path e6 = folder.path() / "e6";
    std::filesystem::create_directories(e6);
    std::ofstream(e6 / "e6golf.exe") << "MZ";
    EnvVar path("PATH", (folder.path() / "no-wine").c_str());
    const QString ini = QString::fromStdString((folder.path() / "settings.ini").string());
    struct Case {
        std::string e6Section;
        QString told;
        std::string logged;
    };
    const Case cases[] = {
        {"DefaultPath=" + e6.string(), Res(190).arg(ini), "] wine not found on PATH"},
        {"LaunchCommand=/nonexistent/starter\nDefaultPath=" + e6.string(),
         Res(191).arg("/nonexistent/starter", ini), "] QProcess::startDetached error:"},
    };
    Open();
    for (const Case& c : cases) {
        SCOPED_TRACE(c.e6Section);
        std::ofstream(folder.path() / "settings.ini") << "[E6]\n" << c.e6Section << "\n";
        LogCapture log;
        EXPECT_EQ(
            AnswerByKey(Qt::Key_Return,
                        [&] { QTest::keyClick(dialog->GetControl()->btnStart, Qt::Key_Space); }),
            c.told);
        EXPECT_EQ(CountOf(log.Text(), c.logged), 1u) << log.Text();
    }
}

}  // namespace
}  // namespace orv::test
