#include "app/version_answer.h"

#include <nlohmann/json.hpp>

namespace orv {

bool ParseVersionAnswer(const std::string& body, VersionInfo* info, std::string* error) {
    try {
        const nlohmann::json answer = nlohmann::json::parse(body);
        const nlohmann::json& data = answer.at("data");
        VersionInfo parsed;
        parsed.latestAppVersion = data.at("app_ver").get<std::string>();
        parsed.appDownloadUrl = data.at("app_down_url").get<std::string>();
        parsed.latestFirmwareVersion = data.at("firm_ver").get<std::string>();
        parsed.firmwareDownloadUrl = data.at("firm_down_url").get<std::string>();
        *info = std::move(parsed);
        return true;
    } catch (const nlohmann::json::exception& e) {
        *error = e.what();
        return false;
    }
}

}  // namespace orv
