// The text format of the language string tables: one UTF-8 text per line as
// "<id><TAB><text>", where "\n", "\t" and "\\" in the text stand for a line
// break, a tab and a backslash. Blank lines and lines starting with '#' are
// skipped; an id appears once.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <unordered_map>

namespace orv {

using StringTable = std::unordered_map<unsigned, std::string>;

// Every well-formed entry of `text`. `rejected` (if given) counts the lines
// that are neither entries, blank nor comments, and repeated ids (the first
// one stays).
StringTable ParseStringTable(std::string_view text, size_t* rejected = nullptr);

}  // namespace orv
