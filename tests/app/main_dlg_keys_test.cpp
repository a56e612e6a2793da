// The main window driven from the keyboard alone: its questions answer to
// Enter and Escape, closing does not wait for a silent version server, and a
// simulator that cannot be started is reported.
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

// Answers the next message box with a key press. A box that the key does not
// close is closed after a while and marked stuck, so the test fails instead
// of hanging.
class KeyAnswer {
public:
    explicit KeyAnswer(Qt::Key key) {
        QObject::connect(&timer_, &QTimer::timeout, [this, key] {
            auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
            if (box == nullptr) {
                return;
            }
            if (text.isNull()) {
                text = box->text();
                QTest::keyClick(box, key);
            } else if (++ticks_ > 300) {
                stuck = true;
                box->done(-1);
            }
        });
        timer_.start(10);
    }
    QString text;  // of the box answered; null until one opened
    bool stuck = false;

private:
    QTimer timer_;
    int ticks_ = 0;
};

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
    void Open(const std::string& settings = "") {
        std::ofstream(folder.path() / "settings.ini") << settings;
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

    {
        // The main window itself still ignores both keys.
        KeyAnswer stray(Qt::Key_Escape);
        for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Enter, Qt::Key_Escape}) {
            QTest::keyClick(dialog.get(), key);
            QTest::keyClick(dialog->GetControl()->btnExit, key);
        }
        QCoreApplication::processEvents();
        EXPECT_TRUE(stray.text.isNull()) << stray.text.toStdString();
        EXPECT_TRUE(dialog->isVisible());
    }
    {
        KeyAnswer escape(Qt::Key_Escape);
        dialog->close();
        EXPECT_EQ(escape.text, Res(167));
        EXPECT_FALSE(escape.stuck);
        EXPECT_FALSE(dialog->GetControl()->IsWaitingDlgShown());
        EXPECT_TRUE(dialog->isVisible());
    }

    bool done = false;
    QObject::connect(dialog.get(), &CMainDlg::ExitDone, [&] { done = true; });
    KeyAnswer enter(Qt::Key_Return);
    dialog->close();
    EXPECT_EQ(enter.text, Res(167));
    EXPECT_FALSE(enter.stuck);
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
        // Read again at each start.
        std::ofstream(folder.path() / "settings.ini") << "[E6]\n" << c.e6Section << "\n";
        LogCapture log;
        KeyAnswer enter(Qt::Key_Return);
        QTest::keyClick(dialog->GetControl()->btnStart, Qt::Key_Space);
        EXPECT_EQ(enter.text, c.told);
        EXPECT_FALSE(enter.stuck);
        EXPECT_EQ(CountOf(log.Text(), c.logged), 1u) << log.Text();
    }
}

}  // namespace
}  // namespace orv::test
