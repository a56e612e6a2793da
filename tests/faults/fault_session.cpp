#include "tests/faults/fault_session.h"

namespace orv::test {

using namespace std::chrono_literals;

namespace {

const char* const kShotTypes[] = {"SetBallData", "SetClubData", "SetMiscData", "SendShot"};

std::string ShotTypeOf(const std::string& text) {
    for (const char* type : kShotTypes) {
        if (text.find("\"Type\":\"" + std::string(type) + "\"") != std::string::npos) {
            return type;
        }
    }
    return {};
}

}  // namespace

bool IsShotMessage(const std::string& text) {
    return !ShotTypeOf(text).empty();
}

std::vector<std::string> ShotSequence(const std::vector<std::string>& received) {
    std::vector<std::string> types;
    for (const std::string& text : received) {
        if (std::string type = ShotTypeOf(text); !type.empty()) {
            types.push_back(std::move(type));
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
    const std::vector<std::string> expected(std::begin(kShotTypes), std::end(kShotTypes));
    EXPECT_EQ(ShotSequence(fresh), expected);
    EXPECT_EQ(ShotCount(), shots + 1);
    return ShotSequence(fresh) == expected && ShotCount() == shots + 1;
}

bool FaultSession::ReconnectedAndReady(int connectionsBefore) {
    return emulator->WaitForConnections(connectionsBefore + 1, 10s) &&
           Eventually([&] { return emulator->IsClientAuthenticated(); }) && WaitReady();
}

}  // namespace orv::test
