#include "common/simulator_settings.h"

#include <pugixml.hpp>

#include <sstream>

#include "common/debug_log.h"
#include "common/file_access.h"

namespace orv {

namespace {

// The simulator's settings are a few kilobytes; this only stops a wrong file.
constexpr size_t kMaxSettingsXmlBytes = 16 << 20;

}  // namespace

bool SetShowResultXml(std::string_view xml, bool hideShotResult, std::string& updated) {
    pugi::xml_document document;
    if (!document.load_buffer(xml.data(), xml.size())) {
        return false;
    }
    const char* value = hideShotResult ? "True" : "False";
    pugi::xml_node settings = document.child("SettingsFile").child("InterfaceSettings");
    settings.attribute("ShowDrivingRangeAnalyzer").set_value(value);
    settings.attribute("ShowPostShotAnalyzer").set_value(value);
    std::ostringstream out;
    document.save(out, "\t", pugi::format_indent, pugi::encoding_auto);
    updated = out.str();
    return true;
}

bool UpdateShowResultFile(const std::filesystem::path& path, bool hideShotResult) {
    std::string original;
    const FileRead read = ReadSmallFile(path, kMaxSettingsXmlBytes, original);
    if (read != FileRead::Ok) {
        LOG_INFO("%s: %s, not updated\n", path.c_str(), FileReadText(read));
        return false;
    }
    std::string updated;
    if (!SetShowResultXml(original, hideShotResult, updated)) {
        LOG_ERROR("%s: not XML, not updated\n", path.c_str());
        return false;
    }
    return updated == original || ReplaceFileContent(path, updated);
}

}  // namespace orv
