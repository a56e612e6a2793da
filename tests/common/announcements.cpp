#include "tests/common/announcements.h"

#include <cstdio>

namespace orv::test {

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
std::string FormatDistance(const std::string& format, const std::string& unit, int number) {
    char text[260];
    std::snprintf(text, sizeof text, format.c_str(), unit.c_str(), number);
    return text;
}
#pragma GCC diagnostic pop

}  // namespace orv::test
