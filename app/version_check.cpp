#include "app/version_check.h"

#include <cstdio>

#include "app/https_get.h"
#include "common/debug_log.h"

namespace orv {

namespace {

constexpr const char* kTag = "CMainDlg::CheckVersion";

}  // namespace

std::string GetVersion() {
    return ORVANE_APP_VERSION;
}

int CompareVersion(const std::string& a, const std::string& b) {
    int left[3] = {0, 0, 0};
    int right[3] = {0, 0, 0};
    std::sscanf(a.c_str(), "%d.%d.%d", &left[0], &left[1], &left[2]);
    std::sscanf(b.c_str(), "%d.%d.%d", &right[0], &right[1], &right[2]);
    for (int i = 0; i < 3; ++i) {
        if (left[i] != right[i]) {
            return left[i] > right[i] ? 1 : -1;
        }
    }
    return 0;
}

VersionCheckResult CheckVersion(const VersionCheckConfig& config, HttpsCancel* cancel) {
    VersionCheckResult result;
    result.appVersion = config.runningVersion;

    HttpsRequest request;
    request.url = "https://" + config.host + ":" + std::to_string(config.port) + "/intro/version";
    request.headers = {
        "Content-Type: application/x-www-form-urlencoded",
        "ORVANE-app-Agent: 1.0",
        "ORVANE-Language: en",
        "ORVANE-Platform: WIN",
    };
    request.caFile = config.caFile;
    request.connectTimeout = config.timing.connect;
    request.totalTimeout = config.timing.total;
    request.maxBodyBytes = config.maxAnswerBytes;
    const HttpsResponse response = HttpsGet(request, cancel);
    if (response.cancelled) {
        LOG_INFO_AS(kTag, "Version check cancelled\n");
        return result;
    }
    if (!response.ok) {
        LOG_ERROR_AS(kTag, "%s error:0x%x\n", response.failedCall,
                     static_cast<unsigned>(response.code));
        return result;
    }

    LOG_INFO_AS(kTag, "%s\n", response.body.c_str());
    std::string error;
    if (!ParseVersionAnswer(response.body, &result.latest, &error)) {
        LOG_ERROR_AS(kTag, "%s", error.c_str());
        result.status = VersionCheckStatus::kBadAnswer;
        return result;
    }
    result.status = VersionCheckStatus::kOk;
    LOG_INFO_AS(kTag, "App ver: %s\n", result.appVersion.c_str());
    LOG_INFO_AS(kTag, "Latest ver: %s\n", result.latest.latestAppVersion.c_str());
    LOG_INFO_AS(kTag, "Down url: %s\n", result.latest.appDownloadUrl.c_str());
    return result;
}

bool ShouldOfferAppUpdate(const VersionCheckResult& result) {
    return result.status == VersionCheckStatus::kOk &&
           CompareVersion(result.appVersion, result.latest.latestAppVersion) == -1;
}

bool ShouldOfferFirmwareUpdate(const std::string& deviceFirmware,
                               const std::string& latestFirmware) {
    return !deviceFirmware.empty() && !latestFirmware.empty() &&
           CompareVersion(deviceFirmware, latestFirmware) == -1;
}

}  // namespace orv
