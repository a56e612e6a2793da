// printf-style formatting for text that a machine reads (simulator messages,
// log lines, files): numbers always come out as under the C locale, with "."
// as the decimal point, whatever locale the program was started in.
#pragma once

#include <cstdarg>
#include <cstddef>
#include <string>

#include "common/debug_log.h"

namespace orv {

// vsnprintf under the C locale: same result, same truncation rules.
int CFormatV(char* buffer, size_t size, const char* format, va_list args) ORV_PRINTF_LIKE(3, 0);
int CFormatTo(char* buffer, size_t size, const char* format, ...) ORV_PRINTF_LIKE(3, 4);
// The whole text, however long.
std::string CFormat(const char* format, ...) ORV_PRINTF_LIKE(1, 2);

}  // namespace orv
