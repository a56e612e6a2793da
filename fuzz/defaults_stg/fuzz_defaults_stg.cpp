// Arbitrary bytes as the simulator's defaults.stg: text that does not parse
// is never replaced; what is written parses again, carries the requested
// analyser values, and a second update with the same value changes nothing.
#include <pugixml.hpp>

#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

#include "common/simulator_settings.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string_view xml(reinterpret_cast<const char*>(data), size);
    const bool hide = size > 0 && (data[size - 1] & 1) != 0;
    std::string updated = "untouched";
    if (!orv::SetShowResultXml(xml, hide, updated)) {
        if (updated != "untouched") {
            __builtin_trap();
        }
        return 0;
    }
    pugi::xml_document document;
    if (!document.load_buffer(updated.data(), updated.size())) {
        __builtin_trap();
    }
    const pugi::xml_node settings = document.child("SettingsFile").child("InterfaceSettings");
    for (const char* name : {"ShowDrivingRangeAnalyzer", "ShowPostShotAnalyzer"}) {
        const pugi::xml_attribute attribute = settings.attribute(name);
        if (attribute && std::strcmp(attribute.value(), hide ? "True" : "False") != 0) {
            __builtin_trap();
        }
    }
    std::string again;
    if (!orv::SetShowResultXml(updated, hide, again) || again != updated) {
        __builtin_trap();
    }
    return 0;
}
