#include "tests/faults/fault_session.h"

namespace orv::test {

using namespace std::chrono_literals;

// The four messages that make one shot, in the order they must arrive.
const std::vector<std::string> kShotTypes = {"SetBallData", "SetClubData", "SetMiscData",
                                             "SendShot"};

std::vector<std::string> ShotSequence(const std::vector<std::string>& received) {
    std::vector<std::string> types;
    for (const std::string& text : received) {
        for (const std::string& type : kShotTypes) {
            if (text.find("\"Type\":\"" + type + "\"") != std::string::npos) {
                types.push_back(type);
            }
        }
    }
    return types;
}

bool FaultSession::SensorConnectedNow() const {
    const std::vector<std::string> events = ui.Events();
    for (auto event = events.rbegin(); event != events.rend(); ++event) {
        if (event->rfind("ble:", 0) == 0) {
            return *event == "ble:3";
        }
    }
    return false;
}

size_t FaultSession::ShotCount() const {
    return emulator->Shots().size();
}

bool FaultSession::SwingBecomesOneShot() {
    // A swing while the simulator is still disarmed from the last shot would
    // not be a fair test of the link.
    if (!WaitReady() || !Eventually([&] { return SensorConnectedNow(); })) {
        ADD_FAILURE() << "session not ready for a swing";
        return false;
    }
    const size_t shots = ShotCount();
    const size_t seen = emulator->Received().size();
    sensor->TriggerSwing(DriverSwing());
    if (!emulator->WaitForShots(shots + 1, 10s)) {
        ADD_FAILURE() << "the swing never became a shot";
        return false;
    }
    const std::vector<std::string> all = emulator->Received();
    const std::vector<std::string> fresh(all.begin() + static_cast<std::ptrdiff_t>(seen),
                                         all.end());
    EXPECT_EQ(ShotSequence(fresh), kShotTypes);
    EXPECT_EQ(ShotCount(), shots + 1);
    return ShotSequence(fresh) == kShotTypes && ShotCount() == shots + 1;
}

bool FaultSession::ReconnectedAndReady(int connectionsBefore) {
    return emulator->WaitForConnections(connectionsBefore + 1, 10s) &&
           Eventually([&] { return emulator->IsClientAuthenticated(); }) && WaitReady();
}

}  // namespace orv::test
