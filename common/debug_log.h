// Console debug log: one line per event, stamped with wall-clock milliseconds.
// Tagged lines ("[ms] [Function(line)] ") are gated by the show-log switch,
// untagged detail lines ("[ms] ") by the packet-dump switch.
#pragma once

#include <string_view>

#if defined(__GNUC__)
#define ORV_PRINTF_LIKE(fmt, first) __attribute__((format(printf, fmt, first)))
#else
#define ORV_PRINTF_LIKE(fmt, first)
#endif

// Sets both switches; returns showDump.
bool ShowLog(bool showLog, bool showDump);
bool IsShowLog();
bool IsShowDump();

// `function` is a qualified name ("Orvane::OrvManager::Start") or a compiler
// signature (__PRETTY_FUNCTION__), which is cut down to the qualified name.
void PrintLog(const char* function, int line, const char* format, ...) ORV_PRINTF_LIKE(3, 4);
void PrintErr(const char* function, int line, const char* format, ...) ORV_PRINTF_LIKE(3, 4);
void PrintRaw(const char* format, ...) ORV_PRINTF_LIKE(1, 2);

namespace orv {
// "void Orvane::OrvManager::Start()" -> "Orvane::OrvManager::Start"; a text
// without a parameter list comes back unchanged.
std::string_view QualifiedFunctionName(std::string_view signature);
}  // namespace orv

// Log with the calling function's qualified name and line.
#define LOG_INFO(...) PrintLog(__PRETTY_FUNCTION__, __LINE__, __VA_ARGS__)
#define LOG_ERROR(...) PrintErr(__PRETTY_FUNCTION__, __LINE__, __VA_ARGS__)
// Log under an explicit tag, where the system's own text names another function.
#define LOG_INFO_AS(tag, ...) PrintLog(tag, __LINE__, __VA_ARGS__)
#define LOG_ERROR_AS(tag, ...) PrintErr(tag, __LINE__, __VA_ARGS__)
