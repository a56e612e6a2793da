// Asks the version service for the newest application and firmware versions.
// The network part returns a result; whether to offer an update is decided by
// pure functions, and the dialog shows the offers.
#pragma once

#include <chrono>
#include <cstddef>
#include <string>

#include "app/version_answer.h"

namespace orv {

class HttpsCancel;

// The program's own version, from the build.
std::string GetVersion();

// Compares "major.minor.patch" texts number by number (missing parts are 0):
// -1 when a is older, 0 when equal, 1 when newer.
int CompareVersion(const std::string& a, const std::string& b);

struct VersionCheckTiming {
    std::chrono::milliseconds connect{10000};  // the service's connect time-out
    // Bounds the whole exchange so a trickling server cannot hold the worker.
    std::chrono::milliseconds total{30000};
};

struct VersionCheckConfig {
    std::string host;  // version server
    int port = 9443;
    std::string caFile;                 // CA bundle; empty: the system's CAs
    std::string runningVersion;         // what is compared against "app_ver"
    size_t maxAnswerBytes = 64 * 1024;  // real answers are a few hundred bytes
    VersionCheckTiming timing;
};

enum class VersionCheckStatus {
    kOk,
    kNoAnswer,   // no connection, TLS refused, time-out or an oversized answer
    kBadAnswer,  // not the expected JSON
};

struct VersionCheckResult {
    VersionCheckStatus status = VersionCheckStatus::kNoAnswer;
    std::string appVersion;  // the running version that was reported
    VersionInfo latest;      // filled when status is kOk
};

// GET "/intro/version" over HTTPS with the service's headers; logs the answer
// and the versions. Blocking: run it on a worker thread; `cancel` ends it early.
VersionCheckResult CheckVersion(const VersionCheckConfig& config, HttpsCancel* cancel = nullptr);

// The running program is older than the service's application version.
bool ShouldOfferAppUpdate(const VersionCheckResult& result);

// The sensor's firmware is older than the service's; both must be known.
bool ShouldOfferFirmwareUpdate(const std::string& deviceFirmware,
                               const std::string& latestFirmware);

}  // namespace orv
