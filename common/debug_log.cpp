#include "common/debug_log.h"

#include <atomic>
#include <cstdarg>
#include <cstdio>

#include "common/c_format.h"
#include "common/clock.h"

namespace {

// Written once at start-up, read everywhere; atomics keep late toggles (tests) race-free.
std::atomic<bool> gShowLog{false};
std::atomic<bool> gShowDump{false};

constexpr size_t kBufferSize = 40960;

// Prints prefix and message as one stdio call, then flushes, so a line from
// one thread is never split by another and reaches a pipe at once.
void Emit(const char* prefix, const char* message) {
    std::printf("%s%s", prefix, message);
    std::fflush(stdout);
}

void ORV_PRINTF_LIKE(4, 0)
    EmitTagged(bool error, const char* function, int line, const char* format, va_list args) {
    char message[kBufferSize] = {};
    orv::CFormatV(message, sizeof message, format, args);
    const std::string_view name = orv::QualifiedFunctionName(function ? function : "");
    char prefix[kBufferSize];
    std::snprintf(
        prefix, sizeof prefix, error ? "!!! ERROR [%lld] [%.*s(%d)] " : "[%lld] [%.*s(%d)] ",
        static_cast<long long>(WallClockMs()), static_cast<int>(name.size()), name.data(), line);
    Emit(prefix, message);
}

}  // namespace

bool ShowLog(bool showLog, bool showDump) {
    gShowLog.store(showLog, std::memory_order_relaxed);
    gShowDump.store(showDump, std::memory_order_relaxed);
    return showDump;
}

bool IsShowLog() {
    return gShowLog.load(std::memory_order_relaxed);
}
bool IsShowDump() {
    return gShowDump.load(std::memory_order_relaxed);
}

void PrintLog(const char* function, int line, const char* format, ...) {
    if (!IsShowLog()) {
        return;
    }
    va_list args;
    va_start(args, format);
    EmitTagged(false, function, line, format, args);
    va_end(args);
}

void PrintErr(const char* function, int line, const char* format, ...) {
    if (!IsShowLog()) {
        return;
    }
    va_list args;
    va_start(args, format);
    EmitTagged(true, function, line, format, args);
    va_end(args);
}

void PrintRaw(const char* format, ...) {
    if (!IsShowDump()) {
        return;
    }
    char message[kBufferSize] = {};
    va_list args;
    va_start(args, format);
    orv::CFormatV(message, sizeof message, format, args);
    va_end(args);
    char prefix[64];
    std::snprintf(prefix, sizeof prefix, "[%lld] ", static_cast<long long>(WallClockMs()));
    Emit(prefix, message);
}

namespace orv {

std::string_view QualifiedFunctionName(std::string_view signature) {
    // The parameter list starts at the first '(' outside template brackets;
    // "operator()" carries its own pair before the list.
    size_t open = std::string_view::npos;
    int depth = 0;
    for (size_t i = 0; i < signature.size(); ++i) {
        const char c = signature[i];
        if (c == '<') {
            ++depth;
        } else if (c == '>' && depth > 0) {
            --depth;
        } else if (c == '(' && depth == 0) {
            if (signature.substr(0, i).ends_with("operator") &&
                signature.substr(i).starts_with("()")) {
                ++i;
                continue;
            }
            open = i;
            break;
        }
    }
    if (open == std::string_view::npos) {
        return signature;
    }
    // The name begins after the last blank outside template brackets (the
    // return type ends there).
    size_t begin = 0;
    depth = 0;
    for (size_t i = open; i-- > 0;) {
        const char c = signature[i];
        if (c == '>') {
            ++depth;
        } else if (c == '<' && depth > 0) {
            --depth;
        } else if ((c == ' ' || c == '*' || c == '&') && depth == 0) {
            begin = i + 1;
            break;
        }
    }
    return signature.substr(begin, open - begin);
}

}  // namespace orv
