// An initialisation-file text edited key by key: values are read and
// replaced while comments, unknown keys and other sections are kept.
// Section and key names compare without regard to case, as Windows
// initialisation files do.
#pragma once

#include <memory>
#include <string>
#include <string_view>

namespace orv {

class IniDocument {
public:
    IniDocument();
    ~IniDocument();
    IniDocument(const IniDocument&) = delete;
    IniDocument& operator=(const IniDocument&) = delete;

    // Replaces the content with `text`. False, and an empty document, when
    // the text is not text at all (it holds a NUL byte).
    bool Parse(std::string_view text);

    // True when the document has a named section; keys above the first
    // section belong to none and are not settings.
    bool HasSections() const;

    // The value, or `fallback` when the key is missing.
    std::string Get(const char* section, const char* key, const char* fallback) const;
    // Adds the key (and its section) at the end when missing.
    void Set(const char* section, const char* key, const std::string& value);

    // The whole document as "key=value" lines.
    std::string Text() const;

private:
    struct Impl;
    std::unique_ptr<Impl> impl_;
};

}  // namespace orv
