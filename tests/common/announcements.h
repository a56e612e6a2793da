// The shipped languages, for the string-table and speech tests.
#pragma once

#include <string>

namespace orv::test {

struct Language {
    const char* folder;
    int id;
};

inline constexpr Language kLanguages[] = {{"en", 1033}, {"ja", 1041}, {"ko", 1042}, {"zh", 2052}};

}  // namespace orv::test
