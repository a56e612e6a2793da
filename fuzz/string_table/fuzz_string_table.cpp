// Arbitrary bytes as a language string table: every entry has a 16-bit id,
// and no line yields more than one entry or rejection.
#include <algorithm>
#include <cstdint>
#include <string_view>

#include "common/string_table.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    size_t rejected = 0;
    const orv::StringTable table = orv::ParseStringTable(text, &rejected);
    const auto lines = static_cast<size_t>(std::count(text.begin(), text.end(), '\n')) + 1;
    if (table.size() + rejected > lines) {
        __builtin_trap();
    }
    for (const auto& entry : table) {
        if (entry.first > 0xFFFF || entry.second.size() > size) {
            __builtin_trap();
        }
    }
    return 0;
}
