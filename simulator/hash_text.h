// Message digests as lowercase hexadecimal text, and the loose "true" test
// used for values the simulator may send as text.
#pragma once

#include <cstddef>
#include <string>

// selector 0 SHA-1, 1 MD5, 2 SHA-256; any other selector or a failing
// digest gives an empty text.
std::string GetHashText(const void* data, size_t length, int selector);

// "true" in any letter case.
bool IsTrueString(const std::string& text);
