// Where the session looks for the simulator: the computer the user named in
// the settings, or this one.
#pragma once

#include "session/orv_manager.h"

namespace orv {

// `config` with the settings' simulator host, unless it already names an address.
Orvane::OrvManagerConfig WithSimulatorHost(Orvane::OrvManagerConfig config);

}  // namespace orv
