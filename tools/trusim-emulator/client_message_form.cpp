#include "tools/trusim-emulator/client_message_form.h"

#include <cstddef>

namespace orv {

namespace {

struct Form {
    std::string_view type;
    const char* form;
};

constexpr Form kForms[] = {
    {"Handshake", R"({"Type":"Handshake"})"},
    {"Challenge", R"({"Type":"Challenge", "Developer":"%s","Hash":"%s"})"},
    {"Ping", R"({"Type":"Ping"})"},
    {"SetClubType", R"({"Type":"SetClubType","ClubType":"%s"})"},
    {"SetBallData",
     "{\"Type\":\"SetBallData\",\"BallData\":{\"BackSpin\":%f, \"BallSpeed\":%f,\t"
     "\"LaunchAngle\":%f, \"LaunchDirection\":%f, \"SideSpin\":%f}}"},
    {"SetClubData",
     R"({"Type":"SetClubData","ClubData":{"ClubAngleFace":%f, "ClubAnglePath":%f, "ClubHeadSpeed":%f}})"},
    {"SetMiscData",
     R"({"Type":"SetMiscData", "MiscData":{"TeeHeight":%f, "TeeType":%d, "TeedUp":"%b"}})"},
    {"SendShot", R"({"Type":"SendShot"})"},
};

constexpr size_t kNoMatch = std::string_view::npos;

bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}

// End of an integer (no leading zeros, as JSON wants) starting at `at`,
// followed by exactly three decimals when `decimals`.
size_t NumberEnd(std::string_view text, size_t at, bool decimals) {
    size_t i = at;
    if (i < text.size() && text[i] == '-') {
        ++i;
    }
    const size_t first = i;
    while (i < text.size() && IsDigit(text[i])) {
        ++i;
    }
    if (i == first || (text[first] == '0' && i - first > 1)) {
        return kNoMatch;
    }
    if (!decimals) {
        return i;
    }
    if (i >= text.size() || text[i] != '.') {
        return kNoMatch;
    }
    ++i;
    for (int k = 0; k < 3; ++k, ++i) {
        if (i >= text.size() || !IsDigit(text[i])) {
            return kNoMatch;
        }
    }
    return i;
}

size_t TextEnd(std::string_view text, size_t at) {
    size_t i = at;
    while (i < text.size() && text[i] != '"') {
        if (text[i] == '\\' || static_cast<unsigned char>(text[i]) < 0x20) {
            return kNoMatch;
        }
        ++i;
    }
    return i;
}

size_t TruthEnd(std::string_view text, size_t at) {
    for (std::string_view word : {"true", "false"}) {
        if (text.substr(at, word.size()) == word) {
            return at + word.size();
        }
    }
    return kNoMatch;
}

size_t PlaceholderEnd(char kind, std::string_view text, size_t at) {
    switch (kind) {
        case 'f':
            return NumberEnd(text, at, true);
        case 'd':
            return NumberEnd(text, at, false);
        case 's':
            return TextEnd(text, at);
        case 'b':
            return TruthEnd(text, at);
        default:
            return kNoMatch;
    }
}

}  // namespace

const char* ClientMessageForm(std::string_view type) {
    for (const Form& entry : kForms) {
        if (entry.type == type) {
            return entry.form;
        }
    }
    return nullptr;
}

bool MatchesForm(std::string_view form, std::string_view text) {
    size_t at = 0;
    for (size_t f = 0; f < form.size(); ++f) {
        if (form[f] == '%' && f + 1 < form.size()) {
            at = PlaceholderEnd(form[++f], text, at);
            if (at == kNoMatch) {
                return false;
            }
        } else if (at >= text.size() || text[at++] != form[f]) {
            return false;
        }
    }
    return at == text.size();
}

}  // namespace orv
