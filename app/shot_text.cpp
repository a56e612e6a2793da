#include "app/shot_text.h"

#include <QCoreApplication>
#include <QLocale>
#include <QStringList>

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

QString SessionSummary(const std::vector<history::ClubFigures>& figures) {
    if (figures.empty()) {
        return QCoreApplication::translate("SessionSummary", "Session: no shots");
    }
    QStringList clubs;
    for (const history::ClubFigures& club : figures) {
        const QString shots = club.count == 1
                                  ? QCoreApplication::translate("SessionSummary", "%1 1 shot")
                                        .arg(ClubName(club.club))
                                  : QCoreApplication::translate("SessionSummary", "%1 %2 shots")
                                        .arg(ClubName(club.club), QLocale().toString(club.count));
        clubs << QCoreApplication::translate("SessionSummary",
                                             "%1, ball speed %2 ± %3, launch %4, direction %5, "
                                             "back spin %6, side spin %7, head speed %8")
                     .arg(shots, OrvaneWinUI::ShotFigure(club.ballSpeed.mean, 1),
                          OrvaneWinUI::ShotFigure(club.ballSpeed.deviation, 1),
                          OrvaneWinUI::ShotFigure(club.launchAngle.mean, 1),
                          OrvaneWinUI::ShotFigure(club.direction.mean, 1),
                          OrvaneWinUI::ShotFigure(club.backSpin.mean, 0),
                          OrvaneWinUI::ShotFigure(club.sideSpin.mean, 0),
                          OrvaneWinUI::ShotFigure(club.headSpeed.mean, 1));
    }
    return QCoreApplication::translate("SessionSummary", "Session: %1")
        .arg(clubs.join(QStringLiteral("; ")));
}

}  // namespace orv
