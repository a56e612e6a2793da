// A titled row of mutually exclusive choices with an index, as the settings
// are stored.
#pragma once

#include <QFrame>
#include <QStringList>

#include "ui/ui_export.h"

class QButtonGroup;
class QHBoxLayout;
class QLabel;
class QRadioButton;

namespace OrvaneWinUI {

class ORVANE_UI_EXPORT RadioGroup : public QFrame {
    Q_OBJECT
public:
    RadioGroup(const QString& title, const QStringList& choices, QWidget* parent = nullptr);

    // -1 when nothing is selected.
    int SelectedIndex() const;
    // Selects without emitting ChoiceClicked; false for an index out of range.
    bool SetSelectedIndex(int index);

    int Count() const;
    QRadioButton* Choice(int index) const;
    void SetTitle(const QString& title);
    QString Title() const;
    void SetChoiceText(int index, const QString& text);
    // Places `widget` right after choice `index` (e.g. a picture that belongs to it).
    void AttachToChoice(int index, QWidget* widget);

signals:
    // The user clicked a choice (also when it was already selected).
    void ChoiceClicked(int index);
    // The selection changed, by the user or by SetSelectedIndex.
    void SelectedIndexChanged(int index);

private:
    QLabel* title_;
    QHBoxLayout* row_;
    QButtonGroup* buttons_;
};

}  // namespace OrvaneWinUI
