// The user's interface language as a Windows language id (1033 US English,
// 1041 Japanese, 1042 Korean, 2052 Simplified Chinese, ...), the number by
// which speech and the string tables pick their language.
#pragma once

#include <string_view>

// The language of the user's messages locale: LC_ALL, else LC_MESSAGES,
// else LANG, as the C library chooses it. 1033 for "C", "POSIX" or none.
int GetUserDefaultLanguageId();

namespace orv {

// "ja_JP.UTF-8" -> 1041, "de_AT" -> 3079, "zh_TW.UTF-8@x" -> 1028; a
// language without a territory gets its main one ("pt" -> 2070); unknown
// languages, "C" and "POSIX" give 1033.
int LanguageIdFromLocale(std::string_view locale);

}  // namespace orv
