// The E6 simulator's own settings file ("defaults.stg", XML). The
// application mirrors one choice into it: the simulator's shot analysers
// are shown exactly when the application hides its own result screen.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace orv {

// Sets "ShowDrivingRangeAnalyzer" and "ShowPostShotAnalyzer" of
// SettingsFile/InterfaceSettings to "True" or "False" and writes the document
// into `updated`, indented by tabs. Attributes or elements that are not there
// stay absent. False, with `updated` untouched, when `xml` does not parse.
bool SetShowResultXml(std::string_view xml, bool hideShotResult, std::string& updated);

// Applies SetShowResultXml to the file at `path`. A missing or malformed
// file is left exactly as it is (one log line).
bool UpdateShowResultFile(const std::filesystem::path& path, bool hideShotResult);

}  // namespace orv
