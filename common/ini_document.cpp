#include "common/ini_document.h"

// Debian ships SimpleIni's template definitions behind SI_IMPLEMENTATION (for
// its own shared library); this is the only file that includes the header, so
// the definitions are compiled here, with our sanitizers and fuzzing.
#define SI_NO_CONVERSION
#define SI_IMPLEMENTATION
#include <SimpleIni.h>

namespace orv {

namespace {

bool IsCommentOrBlank(std::string_view line) {
    const size_t first = line.find_first_not_of(" \t\r\v\f");
    return first == std::string_view::npos || line[first] == ';' || line[first] == '#';
}

// SimpleIni keeps comments only in front of a section or key, so the
// comments after the last of them are cut off here and put back by Text().
size_t TailStart(std::string_view text) {
    size_t end = text.size();
    while (end > 0) {
        size_t begin = text.rfind('\n', end - 1);
        begin = begin == std::string_view::npos ? 0 : begin + 1;
        if (!IsCommentOrBlank(text.substr(begin, end - begin))) {
            return end;
        }
        end = begin == 0 ? 0 : begin - 1;
    }
    return 0;
}

}  // namespace

struct IniDocument::Impl {
    CSimpleIniA ini;
    std::string tail;

    Impl() {
        ini.SetUnicode(true);
        ini.SetMultiKey(false);
        ini.SetMultiLine(false);
        ini.SetSpaces(false);
        // Like GetPrivateProfileString: a value in double quotes is read
        // without them (and blanks at its ends are kept by quoting).
        ini.SetQuotes(true);
    }
};

IniDocument::IniDocument() : impl_(std::make_unique<Impl>()) {}

IniDocument::~IniDocument() = default;

bool IniDocument::Parse(std::string_view text) {
    impl_ = std::make_unique<Impl>();
    if (text.find('\0') != std::string_view::npos) {
        return false;
    }
    const size_t tail = TailStart(text);
    // Text() writes "\n" line ends, the tail too.
    for (const char c : text.substr(tail)) {
        if (c != '\r') {
            impl_->tail += c;
        }
    }
    if (!impl_->tail.empty() && impl_->tail.front() == '\n') {
        impl_->tail.erase(0, 1);
    }
    if (impl_->ini.LoadData(text.data(), tail) < 0) {
        impl_ = std::make_unique<Impl>();
        return false;
    }
    // A "[" line without its "]" makes SimpleIni file the next key under a
    // section named after the rest of the text, newlines and all; no real
    // section has such a name, and saving it would invent sections.
    CSimpleIniA::TNamesDepend sections;
    impl_->ini.GetAllSections(sections);
    for (const auto& section : sections) {
        if (std::string_view(section.pItem).find_first_of("\r\n") != std::string_view::npos) {
            impl_->ini.Delete(section.pItem, nullptr);
        }
    }
    return true;
}

bool IniDocument::HasSections() const {
    CSimpleIniA::TNamesDepend sections;
    impl_->ini.GetAllSections(sections);
    for (const auto& section : sections) {
        if (section.pItem[0] != '\0') {
            return true;
        }
    }
    return false;
}

std::string IniDocument::Get(const char* section, const char* key, const char* fallback) const {
    return impl_->ini.GetValue(section, key, fallback);
}

void IniDocument::Set(const char* section, const char* key, const std::string& value) {
    // A value that itself begins and ends with a quote would lose that pair at
    // the next load; the pair added here is the one the load takes off.
    const bool quoted = value.size() >= 2 && value.front() == '"' && value.back() == '"';
    impl_->ini.SetValue(section, key, (quoted ? '"' + value + '"' : value).c_str());
}

std::string IniDocument::Text() const {
    std::string text;
    impl_->ini.Save(text, false);
    if (!impl_->tail.empty()) {
        if (!text.empty() && text.back() != '\n') {
            text += '\n';
        }
        text += impl_->tail;
    }
    return text;
}

}  // namespace orv
