// The in-process session with helpers for fault tests: each fault is
// followed by a swing that must reach the simulator as one whole shot.
#pragma once

#include <string>

#include "tests/session/session_fixture.h"

namespace orv::test {

class FaultSession : public SessionTest {
protected:
    // One swing; true when it arrives as exactly one more shot, each of its
    // four messages once and in order.
    bool SwingBecomesOneShot();
    // After the simulator link dropped: the client reconnects and the session
    // is ready again.
    bool ReconnectedAndReady(int connectionsBefore);
};

// The four messages that make one shot, in the order they must arrive.
extern const std::vector<std::string> kShotTypes;
// The shot messages of `received` reduced to their "Type" names, in order.
std::vector<std::string> ShotSequence(const std::vector<std::string>& received);

}  // namespace orv::test
