#include "session/shot_report.h"

namespace Orvane {

namespace {

struct OutcomeName {
    ShotOutcome outcome;
    const char* key;
    const char* text;
};

constexpr OutcomeName kOutcomes[] = {
    {ShotOutcome::kSent, "sent", ""},
    {ShotOutcome::kNoSimulator, "no_simulator", "Shot not sent: no simulator connected"},
    {ShotOutcome::kNotAuthenticated, "not_authenticated",
     "Shot not sent: the simulator did not log us in"},
    {ShotOutcome::kSendFailed, "send_failed", "Shot not sent: the simulator link failed"},
    {ShotOutcome::kRefusedNotFinite, "refused_not_finite",
     "Shot not sent: the simulator named no known club"},
};

}  // namespace

const char* ShotOutcomeKey(ShotOutcome outcome) {
    for (const OutcomeName& name : kOutcomes) {
        if (name.outcome == outcome) {
            return name.key;
        }
    }
    return "";
}

const char* ShotOutcomeText(ShotOutcome outcome) {
    for (const OutcomeName& name : kOutcomes) {
        if (name.outcome == outcome) {
            return name.text;
        }
    }
    return "";
}

bool ShotOutcomeFromKey(const std::string& key, ShotOutcome* outcome) {
    for (const OutcomeName& name : kOutcomes) {
        if (key == name.key) {
            *outcome = name.outcome;
            return true;
        }
    }
    return false;
}

}  // namespace Orvane
