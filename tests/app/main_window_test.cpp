// The main window under a private X display, with the session on the
// in-process sensor and the stand-in simulator: settings, links, shots, the
// keyboard alone, every language the program carries, and an orderly quit.
#include <QAbstractButton>
#include <QComboBox>
#include <QFontMetrics>
#include <QGroupBox>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>
#include <QRadioButton>
#include <QRegularExpression>
#include <QTabWidget>
#include <QTableWidget>
#include <QTest>
#include <QTimer>

#include <fstream>

#include "app/history_dialog.h"
#include "app/main_dlg.h"
#include "app/ui_translation.h"
#include "common/settings.h"
#include "common/speech.h"
#include "common/string_res.h"
#include "tests/app/https_test_server.h"
#include "tests/common/env_var.h"
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

QString Res(unsigned id) {
    return QString::fromStdString(GetStringRes(id));
}

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

class MainDlgTest : public SessionTest {
protected:
    void SetUp() override {
        GuiTestApp();
        SessionTest::SetUp();
        LoadLanguageModule(1033);
        options.checkVersion = false;
        options.session = config;
        options.session.simulatorPort = port;
        options.session.timing.pingInterval = 200ms;  // the battery is asked for on the ping pass
    }
    void TearDown() override {
        // The window's closing order: speech and session end before the window goes,
        // so no session thread calls into a window being destroyed.
        TTS_DeInit();
        Orvane::OrvManager::ReleaseInstance();
        dialog.reset();
        OrvSettings::ReleaseInstance();
        QLocale::setDefault(QLocale::c());
        LoadLanguageModule(1033);
        SessionTest::TearDown();
    }
    void Open(const std::string& settings = {}) {
        std::ofstream(folder.path() / "settings.ini") << settings;
        OrvSettings::GetInstanceIn(folder.path());
        dialog = std::make_unique<CMainDlg>(options);
        dialog->OnInitDialog();
        dialog->show();
    }
    OrvaneWinUI::OrvaneUIControl& Control() { return *dialog->GetControl(); }
    bool SensorUp() {
        return ProcessEventsUntil([&] { return Control().lbOrvaneConn->text() == Res(163); });
    }

    TempDir folder;
    MainDlgOptions options;
    std::unique_ptr<CMainDlg> dialog;
};
using MainDlgKeysTest = MainDlgTest;

TEST_F(MainDlgTest, OpensWithTheSettingsShowsTheLinksAndShotsAndSaves) {
    emulator->SetClub("NoSuchClub");  // until it names one the program knows
    Open(
        "; kept across saves\n[Golf]\nSwingLevel=2\nSwingSensitivity=0\nClubType=1\n"
        "HideShotResult=1\n[Sound]\nEffect=0\n[Camera]\nShowPreview=0\nRecording=1\n");
    EXPECT_EQ(dialog->windowTitle(), "OrvaneWin");
    std::vector<int> selected;
    for (const OrvaneWinUI::RadioGroup* group :
         {Control().radioGroupSwingLv, Control().radioGroupSwingSens, Control().radioGroupClub,
          Control().radioGroupEffect, Control().radioGroupShowShotResult,
          Control().radioGroupCameraPreview, Control().radioGroupSwingRecord}) {
        selected.push_back(group->SelectedIndex());
    }
    EXPECT_EQ(selected, (std::vector<int>{2, 0, 1, 1, 1, 1, 0}));
    ASSERT_TRUE(ProcessEventsUntil([&] { return Control().lbE6Conn->text() == Res(176); }));
    ASSERT_TRUE(SensorUp());
    EXPECT_EQ(Control().lbE6Conn->TextColor(), OrvaneWinUI::kConnectedColor);
    EXPECT_EQ(Control().lbFwVer->text(), "1.2.0");

    ASSERT_TRUE(ProcessEventsUntil([&] {
        const E6TruSimClient* client = Orvane::OrvManager::GetInstance()->GetE6();
        return client != nullptr && client->IsAuthenticated() && client->GetArmState() == 0;
    }));
    sensor->TriggerSwing(DriverSwing());
    EXPECT_TRUE(ProcessEventsUntil([&] {
        return Control().shotPanel->NoticeText() ==
               "Shot not sent: the simulator named no known club";
    }));

    emulator->SetClub("Driver");
    ASSERT_TRUE(emulator->SendPlayerData());
    ASSERT_TRUE(ProcessEventsUntil(
        [&] { return Orvane::OrvManager::GetInstance()->GetE6()->GetCurrentClub() != 0; }));
    sensor->TriggerSwing(DriverSwing());
    ASSERT_TRUE(emulator->WaitForShots(1, 10s));
    EXPECT_EQ(emulator->Shots().size(), 1u);  // the refused one never went
    ASSERT_TRUE(ProcessEventsUntil([&] { return Control().shotPanel->HasShot(); }));
    EXPECT_EQ(Control().shotPanel->ClubText(), "Driver");
    ASSERT_TRUE(ProcessEventsUntil([&] {
        return Control().lbBattery->text() == QStringLiteral("%1%").arg(sensor->Battery());
    }));

    Control().radioGroupSwingLv->Choice(0)->click();
    Control().radioGroupCameraPreview->Choice(0)->click();
    EXPECT_EQ(AnswerByKey(Qt::Key_Return, [&] { Control().btnSave->click(); }), Res(166));
    const std::string saved = ReadFileText(folder.path() / "settings.ini");
    for (const char* line : {"SwingLevel=0", "ShowPreview=1", "; kept across saves"}) {
        EXPECT_NE(saved.find(line), std::string::npos) << saved;
    }

    // The simulator going away shows at once.
    emulator->Stop();
    ASSERT_TRUE(ProcessEventsUntil([&] { return Control().lbE6Conn->text() == Res(177); }));
    EXPECT_EQ(Control().lbE6Conn->TextColor(), OrvaneWinUI::kDisconnectedColor);
}

TEST_F(MainDlgKeysTest, QuitQuestionByKeysAndClosingCancelsASilentVersionCheck) {
    // Takes the connection and never starts TLS: without a cancel the window
    // would stay until the connect time-out.
    HttpsTestServer mute(false);
    options.checkVersion = true;
    options.versionCheck.host = "127.0.0.1";
    options.versionCheck.port = mute.port();
    options.versionCheck.timing = {30s, 60s};
    // Threads of ours: Qt names its own, which live for the whole process.
    const std::string comm = ReadFileText("/proc/self/comm");
    const std::string ours = comm.substr(0, comm.size() - 1);
    const int threadsBefore = ThreadCount(ours);
    const auto opened = std::chrono::steady_clock::now();
    Open();
    ASSERT_TRUE(Eventually([&] { return mute.Connected(); }));
    ASSERT_TRUE(SensorUp());

    // The main window itself ignores both keys; its question answers to them.
    EXPECT_TRUE(AnswerByKey(Qt::Key_Escape, [&] {
                    for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Enter, Qt::Key_Escape}) {
                        QTest::keyClick(dialog.get(), key);
                        QTest::keyClick(Control().btnExit, key);
                    }
                }).isNull());
    EXPECT_EQ(AnswerByKey(Qt::Key_Escape, [&] { dialog->close(); }), Res(167));
    EXPECT_FALSE(Control().IsWaitingDlgShown());
    EXPECT_TRUE(dialog->isVisible());
    sensor->TriggerSwing(DriverSwing());  // still running
    ASSERT_TRUE(emulator->WaitForShots(1, 10s));

    bool done = false;
    bool waiting = false;
    QObject::connect(dialog.get(), &CMainDlg::ExitDone, [&] { done = true; });
    EXPECT_EQ(AnswerByKey(Qt::Key_Return,
                          [&] {
                              dialog->close();
                              waiting = Control().IsWaitingDlgShown();
                          }),
              Res(167));
    EXPECT_TRUE(waiting);
    EXPECT_TRUE(ProcessEventsUntil([&] { return done; }, 40s));
    EXPECT_FALSE(Control().IsWaitingDlgShown());
    EXPECT_FALSE(dialog->isVisible());
    EXPECT_LT(std::chrono::steady_clock::now() - opened, options.versionCheck.timing.connect);
    // The session let go of both links and joined its threads; the camera
    // monitor's thread stays for the life of the process.
    EXPECT_TRUE(emulator->WaitForClientGone(5s));
    EXPECT_TRUE(Eventually([&] { return ThreadCount(ours) <= threadsBefore + 1; }))
        << ThreadNames();
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
        EXPECT_EQ(AnswerByKey(Qt::Key_Return,
                              [&] { QTest::keyClick(Control().btnStart, Qt::Key_Space); }),
                  c.told);
        EXPECT_EQ(CountOf(log.Text(), c.logged), 1u) << log.Text();
    }
}

struct Language {
    int id;
    const char* locale;
    const char* driver;  // the club of DriverSwing as the golfer reads it
    QChar decimalPoint;
};
void PrintTo(const Language& language, std::ostream* out) {
    *out << language.locale;
}

// German has no translation of its own: English texts, German figures.
const Language kLanguages[] = {
    {1033, "en_US", "Driver", '.'},   {1041, "ja_JP", "ドライバー", '.'},
    {1042, "ko_KR", "드라이버", '.'}, {2052, "zh_CN", "一号木", '.'},
    {1031, "de_DE", "Driver", ','},
};

// What is no translation's business: the brand, the simulator's name and unit symbols.
const QRegularExpression kUntranslatable(R"(ORVANE X|OrvaneWin|E6|mph|rpm)");
const QRegularExpression kLatinLetter("[A-Za-z]");

class UiLanguageTest : public MainDlgTest, public ::testing::WithParamInterface<Language> {};

// The main window and its history window: nothing left in English, nothing cut
// at the fixed size, figures in the user's locale.
TEST_P(UiLanguageTest, WholeWindowInTheLanguageAndNothingCut) {
    const Language& language = GetParam();
    QLocale::setDefault(QLocale(language.locale));
    const UiTranslation translation(language.id);
    ASSERT_TRUE(translation.Loaded());
    ASSERT_TRUE(LoadLanguageModule(language.id));
    Open();
    ASSERT_TRUE(SensorUp());
    sensor->TriggerSwing(DriverSwing());
    ASSERT_TRUE(ProcessEventsUntil(
        [&] { return Control().shotPanel->HasShot() && Control().lbBattery->text() != "--"; }));
    EXPECT_EQ(Control().shotPanel->ClubText(), QString::fromUtf8(language.driver));
    EXPECT_TRUE(Control()
                    .shotPanel->ValueText(OrvaneWinUI::ShotValue::kBallSpeed)
                    .contains(language.decimalPoint));
    EXPECT_EQ(dialog->size(), QSize(CMainDlg::kWidth, CMainDlg::kHeight));

    // A child of the window, so the one walk below covers it too.
    const HistoryDialog* history = dialog->OpenHistory();
    QStringList texts = {dialog->windowTitle(), history->windowTitle()};
    for (QWidget* widget : dialog->findChildren<QWidget*>()) {
        if (!widget->isVisible()) {
            continue;
        }
        if (auto* label = qobject_cast<QLabel*>(widget)) {
            texts << label->text();
            const QSize needed = QFontMetrics(label->font()).size(0, label->text());
            EXPECT_LE(needed.width(), label->contentsRect().width()) << texts.back().toStdString();
            EXPECT_LE(needed.height(), label->contentsRect().height())
                << texts.back().toStdString();
        } else if (auto* button = qobject_cast<QAbstractButton*>(widget)) {
            texts << button->text();
            EXPECT_FALSE(button->text().isEmpty());
            EXPECT_LE(button->sizeHint().width(), button->width()) << texts.back().toStdString();
        } else if (auto* box = qobject_cast<QComboBox*>(widget)) {
            for (int i = 0; i < box->count(); ++i) {
                texts << box->itemText(i);
            }
            EXPECT_LE(box->sizeHint().width(), box->width()) << box->currentText().toStdString();
        } else if (auto* group = qobject_cast<QGroupBox*>(widget)) {
            texts << group->title();
        } else if (auto* tabs = qobject_cast<QTabWidget*>(widget)) {
            for (int i = 0; i < tabs->count(); ++i) {
                texts << tabs->tabText(i);
            }
        } else if (auto* table = qobject_cast<QTableWidget*>(widget)) {
            for (int i = 0; i < table->columnCount(); ++i) {
                texts << table->horizontalHeaderItem(i)->text();
            }
        }
    }
    const bool english = language.id == 1031 || language.id == 1033;
    for (QString text : texts) {
        EXPECT_TRUE(english || !text.remove(kUntranslatable).contains(kLatinLetter))
            << text.toStdString();
    }
}

INSTANTIATE_TEST_SUITE_P(Languages, UiLanguageTest, ::testing::ValuesIn(kLanguages),
                         [](const auto& row) { return std::string(row.param.locale); });

}  // namespace
}  // namespace orv::test
