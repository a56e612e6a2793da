#include "app/ui_translation.h"

#include <QCoreApplication>
#include <QGuiApplication>
#include <QLibraryInfo>

#include <string_view>

#include "common/debug_log.h"
#include "common/string_res.h"

namespace orv {

namespace {

struct LanguageFiles {
    std::string_view folder;  // as the string tables name it
    const char* qt;           // Qt's own catalogue
    const char* cjkFamily;    // glyphs in the shapes this language's readers expect
};

constexpr LanguageFiles kLanguages[] = {
    {"ja", "qtbase_ja", "Noto Sans CJK JP"},
    {"ko", "qtbase_ko", "Noto Sans CJK KR"},
    {"zh", "qtbase_zh_CN", "Noto Sans CJK SC"},
};

}  // namespace

UiTranslation::UiTranslation(int languageId)
    : UiTranslation(languageId, DataFolder() / "translations") {}

UiTranslation::UiTranslation(int languageId, const std::filesystem::path& folder) {
    const std::string_view name = LanguageFolderName(languageId);
    for (const LanguageFiles& language : kLanguages) {
        if (language.folder != name) {
            continue;
        }
        const std::filesystem::path own = folder / ("orvane_" + std::string(name) + ".qm");
        loaded_ = own_.load(QString::fromStdString(own.string()));
        if (!loaded_) {
            LOG_ERROR("%s: cannot be loaded\n", own.c_str());
        }
        QCoreApplication::installTranslator(&own_);
        // Without Qt's catalogue only the standard buttons stay English.
        if (qt_.load(QString::fromLatin1(language.qt),
                     QLibraryInfo::path(QLibraryInfo::TranslationsPath))) {
            QCoreApplication::installTranslator(&qt_);
        }
        // Han characters differ between the three; the first family keeps
        // the Latin letters and figures as they are in English.
        if (qobject_cast<QGuiApplication*>(QCoreApplication::instance()) != nullptr) {
            previousFont_ = QGuiApplication::font();
            QFont font = previousFont_;
            font.setFamilies({previousFont_.family(), QString::fromLatin1(language.cjkFamily)});
            QGuiApplication::setFont(font);
            fontChanged_ = true;
        }
    }
}

UiTranslation::~UiTranslation() {
    QCoreApplication::removeTranslator(&qt_);
    QCoreApplication::removeTranslator(&own_);
    if (fontChanged_) {
        QGuiApplication::setFont(previousFont_);
    }
}

}  // namespace orv
