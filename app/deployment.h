// Where the vendor's services live. The values are fixed when the product is
// built (CMake cache variables ORVANE_VERSION_HOST, ORVANE_VERSION_CA_FILE,
// ORVANE_WEB_SITE); the defaults are placeholders that resolve nowhere.
#pragma once

#include <string>

#include "app/version_check.h"

namespace orv {

// The product's version check: the built-in host on port 9443, the running
// version from the build, the standard time limits.
VersionCheckConfig DefaultVersionCheckConfig();

// The vendor's web site without a trailing slash, e.g. "https://www.orvane.invalid".
std::string DefaultWebSite();

}  // namespace orv
