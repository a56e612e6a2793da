#include "common/language_id.h"

#include <cstdlib>

namespace orv {

namespace {

constexpr int kUsEnglish = 1033;

// Windows language ids are (sublanguage << 10) | primary language; the
// first row of each language is its main territory, used when none is given.
struct LocaleLanguage {
    std::string_view language;
    std::string_view territory;
    int id;
};

constexpr LocaleLanguage kLanguages[] = {
    {"en", "US", 1033}, {"en", "GB", 2057}, {"en", "AU", 3081}, {"en", "CA", 4105},
    {"en", "NZ", 5129}, {"en", "IE", 6153}, {"en", "ZA", 7177}, {"en", "IN", 16393},
    {"ja", "JP", 1041}, {"ko", "KR", 1042}, {"zh", "CN", 2052}, {"zh", "TW", 1028},
    {"zh", "HK", 3076}, {"zh", "SG", 4100}, {"zh", "MO", 5124}, {"de", "DE", 1031},
    {"de", "CH", 2055}, {"de", "AT", 3079}, {"fr", "FR", 1036}, {"fr", "BE", 2060},
    {"fr", "CA", 3084}, {"fr", "CH", 4108}, {"es", "ES", 3082}, {"es", "MX", 2058},
    {"it", "IT", 1040}, {"pt", "PT", 2070}, {"pt", "BR", 1046}, {"nl", "NL", 1043},
    {"nl", "BE", 2067}, {"sv", "SE", 1053}, {"da", "DK", 1030}, {"nb", "NO", 1044},
    {"nn", "NO", 2068}, {"fi", "FI", 1035}, {"pl", "PL", 1045}, {"cs", "CZ", 1029},
    {"sk", "SK", 1051}, {"hu", "HU", 1038}, {"ru", "RU", 1049}, {"uk", "UA", 1058},
    {"el", "GR", 1032}, {"tr", "TR", 1055}, {"he", "IL", 1037}, {"ar", "SA", 1025},
    {"th", "TH", 1054}, {"vi", "VN", 1066}, {"id", "ID", 1057}, {"ms", "MY", 1086},
    {"hi", "IN", 1081},
};

}  // namespace

int LanguageIdFromLocale(std::string_view locale) {
    // language[_territory][.codeset][@modifier]
    locale = locale.substr(0, locale.find_first_of(".@"));
    const size_t separator = locale.find_first_of("_-");
    const std::string_view language = locale.substr(0, separator);
    const std::string_view territory =
        separator == std::string_view::npos ? std::string_view() : locale.substr(separator + 1);
    int main = 0;
    for (const LocaleLanguage& entry : kLanguages) {
        if (entry.language != language) {
            continue;
        }
        if (entry.territory == territory) {
            return entry.id;
        }
        if (main == 0) {
            main = entry.id;
        }
    }
    return main != 0 ? main : kUsEnglish;
}

}  // namespace orv

int GetUserDefaultLanguageId() {
    for (const char* variable : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
        const char* value = std::getenv(variable);
        if (value != nullptr && value[0] != '\0') {
            return orv::LanguageIdFromLocale(value);
        }
    }
    return orv::LanguageIdFromLocale("C");
}
