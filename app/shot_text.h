// A shot and its club as the golfer reads them, in the language chosen at
// start-up. The simulator gets the club tables' own names, never these.
#pragma once

#include <QString>

#include "history/history_store.h"
#include "session/orv_manager.h"
#include "ui/club_picker.h"

namespace orv {

// "Driver: ball speed 139.1, launch 11.9, direction -2.0, back spin 2,600, side spin -350, head
// speed 94.0" (numbers in the user's locale).
QString ShotLine(const Orvane::LastShotInfo& shot);

// "Session: Driver 12 shots, ball speed 124.5 ± 2.1, launch ...; 7 Iron 1 shot, ..." or
// "Session: no shots".
QString SessionSummary(const std::vector<history::ClubFigures>& figures);

// Why a shot was not sent ("" for a sent shot).
QString OutcomeText(Orvane::ShotOutcome outcome);

// Display name of a club code ("3 Iron"), or "Club <n>" for an unknown code.
QString ClubName(int club);

// Every club the sensor knows, for the picker.
QList<OrvaneWinUI::ClubChoice> ClubChoices();

}  // namespace orv
