// Chooses the record class by a frame's data-type byte, parses the frame into
// it and hands the filled record to a visitor. The one place that maps data
// types to records, shared by the session's dispatcher and the fuzzers.
#pragma once

#include <utility>

#include "protocol/code_tables.h"
#include "protocol/data_records.h"

namespace orv {

template <typename Record, typename Visitor>
void ParseAndVisit(bb* frame, Visitor&& visit) {
    Record record(frame);
    record.ParseData();
    std::forward<Visitor>(visit)(record);
}

// False (and no record) for a type outside the data-type table.
template <typename Visitor>
bool VisitDataRecord(bb* frame, Visitor&& visit) {
    switch (bb_get_at(frame, 0)) {
        case ORV_DATA_ECHO:
            ParseAndVisit<OrvDataEchoModel>(frame, std::forward<Visitor>(visit));
            return true;
        case ORV_DATA_CLUB_INFO:
            ParseAndVisit<OrvDataClubInfoModel>(frame, std::forward<Visitor>(visit));
            return true;
        case ORV_DATA_SWING_INFO:
            ParseAndVisit<OrvDataSwingInfoModel>(frame, std::forward<Visitor>(visit));
            return true;
        case ORV_DATA_STATE:
            ParseAndVisit<OrvDataBatteryStateModel>(frame, std::forward<Visitor>(visit));
            return true;
        case ORV_DATA_FW_VERSION:
            ParseAndVisit<OrvDataFWVersionModel>(frame, std::forward<Visitor>(visit));
            return true;
        case ORV_DATA_RAW:
            ParseAndVisit<OrvDataRawModel>(frame, std::forward<Visitor>(visit));
            return true;
        case ORV_DATA_SIM_RESULT:
            ParseAndVisit<OrvDataSimResultModel>(frame, std::forward<Visitor>(visit));
            return true;
        case ORV_DATA_SIM_RAW:
            ParseAndVisit<OrvDataSimRawModel>(frame, std::forward<Visitor>(visit));
            return true;
        case ORV_DATA_SWING_ABORT:
            ParseAndVisit<OrvDataSwingAbort>(frame, std::forward<Visitor>(visit));
            return true;
        case ORV_DATA_IMPACT_RAW:
            ParseAndVisit<OrvDataImpactRawModel>(frame, std::forward<Visitor>(visit));
            return true;
        case ORV_DATA_LR_SIG:
            ParseAndVisit<OrvDataLRSig>(frame, std::forward<Visitor>(visit));
            return true;
        default:
            return false;
    }
}

// Overload set for visitors: VisitDataRecord(frame, Overloaded{[](OrvDataEchoModel&){}, ...}).
template <typename... Fs>
struct Overloaded : Fs... {
    using Fs::operator()...;
};
template <typename... Fs>
Overloaded(Fs...) -> Overloaded<Fs...>;

}  // namespace orv
