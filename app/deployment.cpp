#include "app/deployment.h"

namespace orv {

VersionCheckConfig DefaultVersionCheckConfig() {
    VersionCheckConfig config;
    config.host = ORVANE_VERSION_HOST;
    config.caFile = ORVANE_VERSION_CA_FILE;
    config.runningVersion = GetVersion();
    return config;
}

std::string DefaultWebSite() {
    std::string site = ORVANE_WEB_SITE;
    while (!site.empty() && site.back() == '/') {
        site.pop_back();
    }
    return site;
}

}  // namespace orv
