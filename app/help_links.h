// The vendor's web pages and the thin layer that asks the user and opens them
// in the desktop's browser. Call from the UI thread.
#pragma once

#include <string>

class QString;
class QWidget;

namespace orv {

enum class HelpPage {
    kUserGuide,  // "/userguide/"
    kSupport,    // "/support.html"
    kSimulator,  // "/e6/": where the simulator is obtained
    kFirmware,   // "/firmware/"
};

// `site` without a trailing slash, e.g. "https://www.orvane.invalid".
std::string HelpPageUrl(const std::string& site, HelpPage page);

// Opens `url` with the desktop's opener; false (logged) when it refuses.
bool OpenUrl(const std::string& url);

// A question box with OK and Cancel; opens `url` on OK. True when opened.
bool AskAndOpen(QWidget* parent, const QString& question, const std::string& url);

// A question box with OK and Cancel and no icon (the missing-simulator offer).
bool AskPlainAndOpen(QWidget* parent, const QString& question, const std::string& url);

// An information box with only OK, then opens `url` (the firmware offer).
bool InformAndOpen(QWidget* parent, const QString& text, const std::string& url);

}  // namespace orv
