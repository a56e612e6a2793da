// The club choice: shows the sensor's club and lets the user ask for another.
#pragma once

#include <QList>
#include <QString>
#include <QWidget>

#include "ui/ui_export.h"

class QComboBox;
class QLabel;

namespace OrvaneWinUI {

struct ClubChoice {
    int code;      // the sensor's club code
    QString name;  // as shown
};

class ORVANE_UI_EXPORT ClubPicker : public QWidget {
    Q_OBJECT
public:
    explicit ClubPicker(QWidget* parent = nullptr);

    void SetClubs(const QList<ClubChoice>& clubs);
    // Shows `code` as the current club without asking for a change; false
    // when the code is not in the list.
    bool SetCurrentClub(int code);
    // 0 when none.
    int CurrentClub() const;
    void SetCaption(const QString& text);
    QComboBox* Box() const { return box_; }

signals:
    // The user picked a club.
    void ClubChosen(int code);

private:
    QLabel* caption_;
    QComboBox* box_;
};

}  // namespace OrvaneWinUI
