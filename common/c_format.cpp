#include "common/c_format.h"

#include <locale.h>
#include <clocale>
#include <cstdio>

namespace orv {

namespace {

// Made once and never freed: the C locale is the same for the whole run.
locale_t CLocale() {
    static const locale_t c = ::newlocale(LC_ALL_MASK, "C", static_cast<locale_t>(0));
    return c;
}

// Switches only the calling thread, so other threads keep their locale.
class ThreadCLocale {
public:
    ThreadCLocale() : previous_(CLocale() != nullptr ? ::uselocale(CLocale()) : nullptr) {}
    ~ThreadCLocale() {
        if (previous_ != nullptr) {
            ::uselocale(previous_);
        }
    }
    ThreadCLocale(const ThreadCLocale&) = delete;
    ThreadCLocale& operator=(const ThreadCLocale&) = delete;

private:
    const locale_t previous_;
};

}  // namespace

int CFormatV(char* buffer, size_t size, const char* format, va_list args) {
    const ThreadCLocale c;
    return std::vsnprintf(buffer, size, format, args);
}

int CFormatTo(char* buffer, size_t size, const char* format, ...) {
    va_list args;
    va_start(args, format);
    const int length = CFormatV(buffer, size, format, args);
    va_end(args);
    return length;
}

std::string CFormat(const char* format, ...) {
    va_list args;
    va_start(args, format);
    va_list again;
    va_copy(again, args);
    char small[256];
    const int length = CFormatV(small, sizeof small, format, args);
    va_end(args);
    std::string text;
    if (length >= 0 && static_cast<size_t>(length) < sizeof small) {
        text.assign(small, static_cast<size_t>(length));
    } else if (length > 0) {
        text.resize(static_cast<size_t>(length) + 1);
        CFormatV(text.data(), text.size(), format, again);
        text.resize(static_cast<size_t>(length));
    }
    va_end(again);
    return text;
}

}  // namespace orv
