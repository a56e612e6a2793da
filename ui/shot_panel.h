// The last shot, in large figures: what a golfer looks for after a swing.
#pragma once

#include <QFrame>
#include <QString>

#include "ui/ui_export.h"

class QLabel;
class QVBoxLayout;

namespace OrvaneWinUI {

struct LastShot {
    double ballSpeed = 0;    // mph
    double launchAngle = 0;  // degrees up
    double direction = 0;    // degrees, negative left of the target line
    double backSpin = 0;     // rpm
    double sideSpin = 0;     // rpm, negative curving left
    double headSpeed = 0;    // club-head speed, mph
    QString club;            // club name
};

// A figure of a shot for the golfer, in the user's locale ("132.9", "132,9").
ORVANE_UI_EXPORT QString ShotFigure(double value, int decimals);

enum class ShotValue { kBallSpeed, kLaunchAngle, kDirection, kBackSpin, kSideSpin, kHeadSpeed };

class ORVANE_UI_EXPORT ShotPanel : public QFrame {
    Q_OBJECT
public:
    explicit ShotPanel(QWidget* parent = nullptr);

    void SetLastShot(const LastShot& shot);
    // A line under the figures saying why the last swing went nowhere; empty hides it.
    void SetNotice(const QString& text);
    QString NoticeText() const;
    // Back to dashes, before the first shot.
    void Clear();
    bool HasShot() const { return hasShot_; }

    QString ValueText(ShotValue value) const;
    QString ClubText() const;
    void SetTitle(const QString& text);
    void SetCaption(ShotValue value, const QString& text);
    // Adds a row below the figures (the club picker).
    void AddFooter(QWidget* widget);

private:
    struct Cell {
        QLabel* caption;
        QLabel* value;
        QLabel* unit;
    };
    static QString Sided(double value, int decimals);
    Cell& At(ShotValue value) { return cells_[static_cast<int>(value)]; }
    const Cell& At(ShotValue value) const { return cells_[static_cast<int>(value)]; }

    QLabel* title_;
    QLabel* club_;
    QLabel* notice_;
    Cell cells_[6];
    QVBoxLayout* layout_;
    bool hasShot_ = false;
};

}  // namespace OrvaneWinUI
