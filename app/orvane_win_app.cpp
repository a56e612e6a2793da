#include "app/orvane_win_app.h"

#include <QApplication>
#include <QCoreApplication>
#include <cstdlib>

#include "app/ble_backend.h"
#include "app/console_reporter.h"
#include "app/main_dlg.h"
#include "app/quit_signals.h"
#include "app/shot_text.h"
#include "app/simulator_host.h"
#include "app/single_instance.h"
#include "app/ui_translation.h"
#include "app/version_check.h"
#include "common/debug_log.h"
#include "common/language_id.h"
#include "common/settings.h"
#include "common/speech.h"
#include "common/string_res.h"
#include "history/history_store.h"
#include "history/history_text.h"
#include "history/history_writer.h"

namespace orv {

namespace {

bool HasDisplay() {
    const char* x11 = std::getenv("DISPLAY");
    const char* wayland = std::getenv("WAYLAND_DISPLAY");
    return (x11 != nullptr && *x11 != '\0') || (wayland != nullptr && *wayland != '\0');
}

// The session's figures per club, one line, once the session is over.
void PrintSessionSummary(const orv::history::HistoryWriter& writer) {
    std::unique_ptr<orv::history::HistoryStore> store =
        writer.Session() > 0 ? orv::history::HistoryStore::Open(writer.File()) : nullptr;
    if (!store) {
        return;
    }
    orv::history::HistoryFilter filter;
    filter.session = writer.Session();
    ConsoleReporter::Line(SessionSummary(store->Figures(filter)));
}

void Say(const char* text) {
    ConsoleReporter::Line(QCoreApplication::translate("COrvaneWinApp", text));
}

constexpr const char* kAlreadyRunning =
    QT_TRANSLATE_NOOP("COrvaneWinApp", "Orvane X is already running.");

}  // namespace

std::filesystem::path HistoryFile() {
    return OrvSettings::GetInstance()->GetFolder() / "history.db";
}

int COrvaneWinApp::Run(int argc, char** argv) {
    const StartupOptions options = ParseStartupOptions(argc, argv);
    if (options.help) {
        // The translations need an application, though nothing else runs.
        const QCoreApplication app(argc, argv);
        const UiTranslation translation(GetUserDefaultLanguageId());
        std::fputs(QCoreApplication::translate("StartupOptions", kUsageText).toUtf8().constData(),
                   stdout);
        return 0;
    }
    if (options.version) {
        std::fputs(("Orvane X " + GetVersion() + "\n").c_str(), stdout);
        return 0;
    }
    ApplyStartupOptions(options);
    // One choice of language for every text of this run.
    const int language = GetUserDefaultLanguageId();
    if (!options.exportHistory.empty()) {
        // Needs no display and no session: the file is read and written, that is all.
        return orv::history::ExportHistoryFile(HistoryFile(), options.exportHistory) ? 0 : 1;
    }
    if (!options.console && !HasDisplay()) {
        LOG_INFO("No display: running in console mode\n");
        return RunConsole(argc, argv, options, language, true);
    }
    return options.console ? RunConsole(argc, argv, options, language, false)
                           : RunWindow(argc, argv, options, language);
}

void COrvaneWinApp::LoadLanguage(int language) {
    LoadLanguageModule(language);
    LOG_INFO("Main Language: %d\n", language);
}

int COrvaneWinApp::RunWindow(int argc, char** argv, const StartupOptions& options, int language) {
    QApplication app(argc, argv);
    // Lets the desktop match the window to the installed entry and its icon.
    QGuiApplication::setDesktopFileName(QStringLiteral(ORVANE_APP_ID));
    const UiTranslation translation(language);
    SingleInstance instance;
    if (!instance.Claim()) {
        Say(kAlreadyRunning);
        return 0;
    }
    LoadLanguage(language);

    OrvSettings* settings = OrvSettings::GetInstance();
    if (settings->GetVersion() != GetVersion()) {
        settings->SetVersion(GetVersion());
    }

    MainDlgOptions dialogOptions;
    dialogOptions.demo = options.demo;
    dialogOptions.session = sessionConfig;
    CMainDlg dialog(dialogOptions);
    dialog.OnInitDialog();
    dialog.show();

    QObject::connect(&instance, &SingleInstance::ActivationRequested, &dialog, [&dialog] {
        dialog.showNormal();
        dialog.raise();
        dialog.activateWindow();
    });
    QuitSignals quit;
    // A signal quits without the question: nobody is there to answer it.
    QObject::connect(&quit, &QuitSignals::QuitRequested, &dialog,
                     [&dialog] { dialog.BeginClose(); });
    QObject::connect(&dialog, &CMainDlg::ExitDone, &app, &QCoreApplication::quit);
    return app.exec();
}

int COrvaneWinApp::RunConsole(int argc, char** argv, const StartupOptions& options, int language,
                              bool noDisplay) {
    QCoreApplication app(argc, argv);
    const UiTranslation translation(language);
    if (noDisplay) {
        Say(QT_TRANSLATE_NOOP("COrvaneWinApp", "No display found: running in console mode."));
    }
    SingleInstance instance;
    if (!instance.Claim()) {
        Say(kAlreadyRunning);
        return 0;
    }
    LoadLanguage(language);
    OrvSettings::GetInstance();
    TTS_Init();

    Orvane::OrvManager* manager = Orvane::OrvManager::GetInstance();
    Orvane::OrvManagerConfig config = WithSimulatorHost(sessionConfig);
    if (!config.makeBleStack) {
        config.makeBleStack = ChooseBleBackend(options.demo);
    }
    manager->SetConfig(std::move(config));
    ConsoleReporter reporter(*manager);
    manager->SetCallback(&reporter);
    const char* running =
        options.demo ? QT_TRANSLATE_NOOP("COrvaneWinApp",
                                         "Orvane X %1 running with the demo sensor. Ctrl-C quits.")
                     : QT_TRANSLATE_NOOP("COrvaneWinApp", "Orvane X %1 running. Ctrl-C quits.");
    ConsoleReporter::Line(QCoreApplication::translate("COrvaneWinApp", running)
                              .arg(QString::fromStdString(GetVersion())));
    history::HistoryWriter history(HistoryFile());
    history.Start();
    manager->SetShotListener(&history);
    manager->Start();

    QuitSignals quit;
    QObject::connect(&quit, &QuitSignals::QuitRequested, &app, &QCoreApplication::quit);
    app.exec();

    Say(QT_TRANSLATE_NOOP("COrvaneWinApp", "Shutting down."));
    TTS_DeInit();
    Orvane::OrvManager::ReleaseInstance();
    history.Stop();
    PrintSessionSummary(history);
    OrvSettings::ReleaseInstance();
    return 0;
}

}  // namespace orv
