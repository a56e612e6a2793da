// The shipped languages and the distance text as the session builds it, for
// the string-table and speech tests.
#pragma once

#include <string>

namespace orv::test {

struct Language {
    const char* folder;
    int id;
};

inline constexpr Language kLanguages[] = {{"en", 1033}, {"ja", 1041}, {"ko", 1042}, {"zh", 2052}};

// Resource 169 filled as the session fills it: snprintf(buf, 260, fmt, unit, number).
std::string FormatDistance(const std::string& format, const std::string& unit, int number);

}  // namespace orv::test
