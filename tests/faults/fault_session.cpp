#include "tests/faults/fault_session.h"

#include <algorithm>

namespace orv::test {

using namespace std::chrono_literals;

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

bool FaultSession::SwingBecomesOneShot() {
    // The sensor's last reported state is "connected" (an earlier connection
    // does not count), and the simulator is armed again after the last shot.
    const auto sensorUp = [&] {
        const std::vector<std::string> events = ui.Events();
        const auto last = std::find_if(events.rbegin(), events.rend(),
                                       [](const std::string& e) { return e.starts_with("ble:"); });
        return last != events.rend() && *last == "ble:3";
    };
    if (!WaitReady() || !Eventually(sensorUp)) {
        ADD_FAILURE() << "session not ready for a swing";
        return false;
    }
    const size_t shots = emulator->Shots().size();
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
    EXPECT_EQ(emulator->Shots().size(), shots + 1);
    return ShotSequence(fresh) == kShotTypes && emulator->Shots().size() == shots + 1;
}

bool FaultSession::ReconnectedAndReady(int connectionsBefore) {
    return emulator->WaitForConnections(connectionsBefore + 1, 10s) &&
           Eventually([&] { return emulator->IsClientAuthenticated(); }) && WaitReady();
}

}  // namespace orv::test
