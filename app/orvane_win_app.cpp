#include "app/orvane_win_app.h"

#include <QApplication>
#include <QCoreApplication>
#include <cstdio>
#include <cstdlib>

#include "app/ble_backend.h"
#include "app/console_reporter.h"
#include "app/main_dlg.h"
#include "app/quit_signals.h"
#include "app/single_instance.h"
#include "app/version_check.h"
#include "common/debug_log.h"
#include "common/language_id.h"
#include "common/settings.h"
#include "common/speech.h"
#include "common/string_res.h"

namespace orv {

namespace {

bool HasDisplay() {
    const char* x11 = std::getenv("DISPLAY");
    const char* wayland = std::getenv("WAYLAND_DISPLAY");
    return (x11 != nullptr && *x11 != '\0') || (wayland != nullptr && *wayland != '\0');
}

void SayAlreadyRunning() {
    std::printf("Orvane X is already running.\n");
    std::fflush(stdout);
}

}  // namespace

int COrvaneWinApp::Run(int argc, char** argv) {
    const StartupOptions options = ParseStartupOptions(argc, argv);
    ApplyStartupOptions(options);
    if (!options.console && !HasDisplay()) {
        LOG_INFO("No display: running in console mode\n");
        std::printf("No display found: running in console mode.\n");
        return RunConsole(argc, argv, options);
    }
    return options.console ? RunConsole(argc, argv, options) : RunWindow(argc, argv, options);
}

void COrvaneWinApp::LoadLanguage() {
    const int language = GetUserDefaultLanguageId();
    LoadLanguageModule(language);
    LOG_INFO("Main Language: %d\n", language);
}

int COrvaneWinApp::RunWindow(int argc, char** argv, const StartupOptions& options) {
    QApplication app(argc, argv);
    SingleInstance instance;
    if (!instance.Claim()) {
        SayAlreadyRunning();
        return 0;
    }
    LoadLanguage();

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

int COrvaneWinApp::RunConsole(int argc, char** argv, const StartupOptions& options) {
    QCoreApplication app(argc, argv);
    SingleInstance instance;
    if (!instance.Claim()) {
        SayAlreadyRunning();
        return 0;
    }
    LoadLanguage();
    OrvSettings::GetInstance();
    TTS_Init();

    Orvane::OrvManager* manager = Orvane::OrvManager::GetInstance();
    Orvane::OrvManagerConfig config = sessionConfig;
    if (!config.makeBleStack) {
        config.makeBleStack = ChooseBleBackend(options.demo);
    }
    manager->SetConfig(std::move(config));
    ConsoleReporter reporter(*manager);
    manager->SetCallback(&reporter);
    std::printf("Orvane X %s running%s. Ctrl-C quits.\n", GetVersion().c_str(),
                options.demo ? " with the demo sensor" : "");
    std::fflush(stdout);
    manager->Start();

    QuitSignals quit;
    QObject::connect(&quit, &QuitSignals::QuitRequested, &app, &QCoreApplication::quit);
    app.exec();

    std::printf("Shutting down.\n");
    std::fflush(stdout);
    TTS_DeInit();
    Orvane::OrvManager::ReleaseInstance();
    OrvSettings::ReleaseInstance();
    return 0;
}

}  // namespace orv
