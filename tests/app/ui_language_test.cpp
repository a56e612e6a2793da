// The main window and its history window in each language the program carries, with a shot on it:
// nothing left in English, nothing cut at the fixed size, figures in the
// user's locale.
#include <QAbstractButton>
#include <QComboBox>
#include <QFontMetrics>
#include <QGroupBox>
#include <QLabel>
#include <QRegularExpression>
#include <QTabWidget>
#include <QTableWidget>

#include <fstream>

#include "app/history_dialog.h"
#include "app/main_dlg.h"
#include "app/ui_translation.h"
#include "common/settings.h"
#include "common/speech.h"
#include "common/string_res.h"
#include "tests/session/session_fixture.h"
#include "tests/ui/gui_test_app.h"
#include "ui/orvane_ui_control.h"
#include "ui/shot_panel.h"
#include "ui/status_label.h"

namespace orv::test {
namespace {

struct Language {
    int id;
    const char* locale;
    const char* driver;  // the club of DriverSwing as the golfer reads it
    QChar decimalPoint;
};

// German has no translation of its own: English texts, German figures.
const Language kLanguages[] = {
    {1033, "en_US", "Driver", '.'},   {1041, "ja_JP", "ドライバー", '.'},
    {1042, "ko_KR", "드라이버", '.'}, {2052, "zh_CN", "一号木", '.'},
    {1031, "de_DE", "Driver", ','},
};

// What is no translation's business: the brand, the simulator's name and unit symbols.
const QRegularExpression kUntranslatable(R"(ORVANE X|OrvaneWin|E6|mph|rpm)");
const QRegularExpression kLatinLetter("[A-Za-z]");

class UiLanguageTest : public SessionTest, public ::testing::WithParamInterface<Language> {
protected:
    void SetUp() override {
        GuiTestApp();
        SessionTest::SetUp();
        OrvSettings::GetInstanceIn(folder.path());
    }
    void TearDown() override {
        dialog.reset();
        TTS_DeInit();
        Orvane::OrvManager::ReleaseInstance();
        OrvSettings::ReleaseInstance();
        QLocale::setDefault(QLocale::c());
        LoadLanguageModule(1033);
        SessionTest::TearDown();
    }

    TempDir folder;
    std::unique_ptr<CMainDlg> dialog;
};

TEST_P(UiLanguageTest, WholeWindowInTheLanguageAndNothingCut) {
    const Language& language = GetParam();
    QLocale::setDefault(QLocale(language.locale));
    const UiTranslation translation(language.id);
    ASSERT_TRUE(translation.Loaded());
    ASSERT_TRUE(LoadLanguageModule(language.id));
    MainDlgOptions options;
    options.checkVersion = false;
    options.session = config;
    options.session.simulatorPort = port;
    options.session.timing.pingInterval = std::chrono::milliseconds(200);
    dialog = std::make_unique<CMainDlg>(options);
    dialog->OnInitDialog();
    dialog->show();
    OrvaneWinUI::OrvaneUIControl& control = *dialog->GetControl();

    const QString connected = QString::fromStdString(GetStringRes(163));
    ASSERT_TRUE(ProcessEventsUntil([&] { return control.lbOrvaneConn->text() == connected; }));
    sensor->TriggerSwing(DriverSwing());
    ASSERT_TRUE(ProcessEventsUntil(
        [&] { return control.shotPanel->HasShot() && control.lbBattery->text() != "--"; }));
    EXPECT_EQ(control.shotPanel->ClubText(), QString::fromUtf8(language.driver));
    EXPECT_TRUE(control.shotPanel->ValueText(OrvaneWinUI::ShotValue::kBallSpeed)
                    .contains(language.decimalPoint));
    EXPECT_EQ(dialog->size(), QSize(CMainDlg::kWidth, CMainDlg::kHeight));

    // A child of the window, so the one walk below covers it too.
    const HistoryDialog* history = dialog->OpenHistory();
    QStringList texts = {dialog->windowTitle(), history->windowTitle()};
    for (QWidget* widget : dialog->findChildren<QWidget*>()) {
        if (!widget->isVisible()) {
            continue;
        }
        const auto where = [](const QString& text) { return text.toStdString(); };
        if (auto* label = qobject_cast<QLabel*>(widget)) {
            texts << label->text();
            const QSize needed = QFontMetrics(label->font()).size(0, label->text());
            EXPECT_LE(needed.width(), label->contentsRect().width()) << where(label->text());
            EXPECT_LE(needed.height(), label->contentsRect().height()) << where(label->text());
        } else if (auto* button = qobject_cast<QAbstractButton*>(widget)) {
            texts << button->text();
            EXPECT_FALSE(button->text().isEmpty());
            EXPECT_LE(button->sizeHint().width(), button->width()) << where(button->text());
        } else if (auto* box = qobject_cast<QComboBox*>(widget)) {
            for (int i = 0; i < box->count(); ++i) {
                texts << box->itemText(i);
            }
            EXPECT_LE(box->sizeHint().width(), box->width()) << where(box->currentText());
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
    const bool english = language.id == 1033 || language.id == 1031;
    for (QString text : texts) {
        EXPECT_TRUE(english || !text.remove(kUntranslatable).contains(kLatinLetter))
            << text.toStdString();
    }
    const QString file = QStringLiteral(ORVANE_SCREENSHOT_DIR "/main-window-%1.png")
                             .arg(QString::fromLatin1(language.locale).left(2));
    dialog->grab().save(file);
}

INSTANTIATE_TEST_SUITE_P(Languages, UiLanguageTest, ::testing::ValuesIn(kLanguages),
                         [](const auto& row) { return std::string(row.param.locale); });

// A table without some texts gives the English ones, never an empty text.
TEST(StringTableLanguage, MissingTextsComeInEnglish) {
    TempDir lang;
    std::filesystem::create_directories(lang.path() / "en");
    std::filesystem::create_directories(lang.path() / "ko");
    std::ofstream(lang.path() / "en" / "strings.tsv") << "163\tConnected\n166\tSaved.\n";
    std::ofstream(lang.path() / "ko" / "strings.tsv") << "163\t연결됨\n166\t\n";
    ASSERT_TRUE(LoadLanguageModuleFrom(lang.path(), 1042));
    EXPECT_EQ(GetStringRes(163), "연결됨");
    EXPECT_EQ(GetStringRes(166), "Saved.");
    LoadLanguageModule(1033);
}

}  // namespace
}  // namespace orv::test
