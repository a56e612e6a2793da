#include "app/shot_text.h"

#include <QCoreApplication>

#include "ui/shot_panel.h"

namespace orv {

namespace {

constexpr const char* kContext = "ClubName";

// By the sensor's club code, in the order of a golf bag.
constexpr struct {
    int code;
    const char* name;
} kClubNames[] = {
    {0x01, QT_TRANSLATE_NOOP("ClubName", "Driver")},
    {0x02, QT_TRANSLATE_NOOP("ClubName", "3 Wood")},
    {0x03, QT_TRANSLATE_NOOP("ClubName", "5 Wood")},
    {0x04, QT_TRANSLATE_NOOP("ClubName", "7 Wood")},
    {0x11, QT_TRANSLATE_NOOP("ClubName", "4 Hybrid")},
    {0x10, QT_TRANSLATE_NOOP("ClubName", "3 Iron")},
    {0x05, QT_TRANSLATE_NOOP("ClubName", "4 Iron")},
    {0x06, QT_TRANSLATE_NOOP("ClubName", "5 Iron")},
    {0x07, QT_TRANSLATE_NOOP("ClubName", "6 Iron")},
    {0x08, QT_TRANSLATE_NOOP("ClubName", "7 Iron")},
    {0x09, QT_TRANSLATE_NOOP("ClubName", "8 Iron")},
    {0x0A, QT_TRANSLATE_NOOP("ClubName", "9 Iron")},
    {0x0B, QT_TRANSLATE_NOOP("ClubName", "Pitching Wedge")},
    {0x0C, QT_TRANSLATE_NOOP("ClubName", "Gap Wedge")},
    {0x0D, QT_TRANSLATE_NOOP("ClubName", "Sand Wedge")},
    {0x0E, QT_TRANSLATE_NOOP("ClubName", "Lob Wedge")},
    {0x0F, QT_TRANSLATE_NOOP("ClubName", "Putter")},
};

// The session's own texts, marked here so that the translators see them.
[[maybe_unused]] constexpr const char* kOutcomeTexts[] = {
    QT_TRANSLATE_NOOP("ShotOutcome", "Shot not sent: no simulator connected"),
    QT_TRANSLATE_NOOP("ShotOutcome", "Shot not sent: the simulator did not log us in"),
    QT_TRANSLATE_NOOP("ShotOutcome", "Shot not sent: the simulator link failed"),
    QT_TRANSLATE_NOOP("ShotOutcome", "Shot not sent: the simulator named no known club"),
};

}  // namespace

QString OutcomeText(Orvane::ShotOutcome outcome) {
    return QCoreApplication::translate("ShotOutcome", Orvane::ShotOutcomeText(outcome));
}

QString ClubName(int club) {
    for (const auto& entry : kClubNames) {
        if (entry.code == club) {
            return QCoreApplication::translate(kContext, entry.name);
        }
    }
    return QCoreApplication::translate("ClubName", "Club %1").arg(club);
}

QList<OrvaneWinUI::ClubChoice> ClubChoices() {
    QList<OrvaneWinUI::ClubChoice> clubs;
    for (const auto& entry : kClubNames) {
        clubs.append({entry.code, QCoreApplication::translate(kContext, entry.name)});
    }
    return clubs;
}

QString ShotLine(const Orvane::LastShotInfo& shot) {
    return QCoreApplication::translate("ShotLine",
                                       "%1: ball speed %2, launch %3, direction %4, back spin %5, "
                                       "side spin %6, head speed %7")
        .arg(ClubName(shot.club), OrvaneWinUI::ShotFigure(shot.ball.BallSpeed, 1),
             OrvaneWinUI::ShotFigure(shot.ball.LaunchAngle, 1),
             OrvaneWinUI::ShotFigure(shot.ball.LaunchDirection, 1),
             OrvaneWinUI::ShotFigure(shot.ball.BackSpin, 0),
             OrvaneWinUI::ShotFigure(shot.ball.SideSpin, 0),
             OrvaneWinUI::ShotFigure(shot.clubData.ClubHeadSpeed, 1));
}

}  // namespace orv
