#include "common/string_table.h"

namespace orv {

namespace {

// Resource ids are 16-bit, as on the platform the tables come from.
constexpr unsigned kMaxId = 0xFFFF;

bool ParseId(std::string_view digits, unsigned& id) {
    if (digits.empty() || digits.size() > 5) {
        return false;
    }
    unsigned value = 0;
    for (const char c : digits) {
        if (c < '0' || c > '9') {
            return false;
        }
        value = value * 10 + static_cast<unsigned>(c - '0');
    }
    if (value > kMaxId) {
        return false;
    }
    id = value;
    return true;
}

std::string Unescape(std::string_view text) {
    std::string out;
    out.reserve(text.size());
    for (size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '\\' && i + 1 < text.size()) {
            const char next = text[i + 1];
            const char plain = next == 'n' ? '\n' : next == 't' ? '\t' : next == '\\' ? '\\' : 0;
            if (plain != 0) {
                out += plain;
                ++i;
                continue;
            }
        }
        out += text[i];
    }
    return out;
}

}  // namespace

StringTable ParseStringTable(std::string_view text, size_t* rejected) {
    constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
    if (text.starts_with(kByteOrderMark)) {
        text.remove_prefix(kByteOrderMark.size());
    }
    StringTable table;
    size_t bad = 0;
    while (!text.empty()) {
        const size_t end = text.find('\n');
        std::string_view line = text.substr(0, end);
        text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
        if (line.ends_with('\r')) {
            line.remove_suffix(1);
        }
        if (line.empty() || line.front() == '#') {
            continue;
        }
        const size_t tab = line.find('\t');
        unsigned id = 0;
        if (tab == std::string_view::npos || !ParseId(line.substr(0, tab), id) ||
            !table.emplace(id, Unescape(line.substr(tab + 1))).second) {
            ++bad;
        }
    }
    if (rejected != nullptr) {
        *rejected = bad;
    }
    return table;
}

}  // namespace orv
