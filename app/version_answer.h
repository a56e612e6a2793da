// The version service's answer: {"data": {"app_ver", "app_down_url",
// "firm_ver", "firm_down_url"}}; other members are ignored.
#pragma once

#include <string>

namespace orv {

struct VersionInfo {
    std::string latestAppVersion;       // "app_ver"
    std::string appDownloadUrl;         // "app_down_url"
    std::string latestFirmwareVersion;  // "firm_ver"
    std::string firmwareDownloadUrl;    // "firm_down_url"
};

// Fills `info` only when all four strings are there. On failure `error` holds
// the JSON library's explanation.
bool ParseVersionAnswer(const std::string& body, VersionInfo* info, std::string* error);

}  // namespace orv
