// Arbitrary bytes as the version service's answer: parsing must either fill
// all four strings or report an error, and the comparison of whatever came
// must be antisymmetric.
#include <cstdint>
#include <string>

#include "app/version_answer.h"
#include "app/version_check.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string body(reinterpret_cast<const char*>(data), size);
    orv::VersionInfo info;
    std::string error;
    if (orv::ParseVersionAnswer(body, &info, &error)) {
        if (!error.empty()) {
            __builtin_trap();
        }
    } else if (error.empty() || !info.latestAppVersion.empty()) {
        __builtin_trap();
    }
    const std::string half = body.substr(0, size / 2);
    const std::string rest = body.substr(size / 2);
    if (orv::CompareVersion(half, rest) != -orv::CompareVersion(rest, half)) {
        __builtin_trap();
    }
    if (orv::CompareVersion(body, body) != 0) {
        __builtin_trap();
    }
    return 0;
}
