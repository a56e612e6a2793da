#pragma once

#include <chrono>

namespace Orvane {

// The session's intervals and limits. The product always uses these defaults;
// tests shorten them to keep runs brief.
struct SessionTiming {
    // How often a silent sensor is checked for.
    std::chrono::milliseconds connCheckInterval{2000};
    // Silence tolerated after a command: a fresh link must answer quickly,
    // one that has answered before gets more slack.
    std::chrono::milliseconds freshLinkLimit{3000};
    std::chrono::milliseconds aliveLinkLimit{10000};
    // Time sync, battery and simulator keep-alive.
    std::chrono::milliseconds pingInterval{20000};
    // Left/right signals are applied once they stop arriving for this long.
    std::chrono::milliseconds lrSigDebounce{500};
    // A back swing that brings no result stops its clip after passes * wait.
    std::chrono::milliseconds backSwingWait{500};
    int backSwingPasses = 8;
};

}  // namespace Orvane
