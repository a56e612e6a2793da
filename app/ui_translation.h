// The texts of the window and of the console in the language chosen at
// start-up: the program's own translations (translations/orvane_<ja|ko|zh>.qm
// beside the program) and Qt's for its standard buttons. English is the
// source text, so it needs no file and is what any untranslated text shows.
#pragma once

#include <QFont>
#include <QTranslator>
#include <filesystem>

namespace orv {

class UiTranslation {
public:
    // Installs on the running application until destroyed. `languageId` as
    // the string tables take it (1041 ja, 1042 ko, 2052 zh, any other en).
    explicit UiTranslation(int languageId);
    UiTranslation(int languageId, const std::filesystem::path& folder);
    ~UiTranslation();
    UiTranslation(const UiTranslation&) = delete;
    UiTranslation& operator=(const UiTranslation&) = delete;

    // False when the language has translations and they could not be loaded.
    bool Loaded() const { return loaded_; }

private:
    QTranslator own_;
    QTranslator qt_;
    bool loaded_ = true;
    bool fontChanged_ = false;
    QFont previousFont_;
};

}  // namespace orv
