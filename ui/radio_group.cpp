#include "ui/radio_group.h"

#include <QButtonGroup>
#include <QHBoxLayout>
#include <QLabel>
#include <QRadioButton>
#include <QVBoxLayout>

namespace OrvaneWinUI {

RadioGroup::RadioGroup(const QString& title, const QStringList& choices, QWidget* parent)
    : QFrame(parent),
      title_(new QLabel(title.toUpper())),
      row_(new QHBoxLayout),
      buttons_(new QButtonGroup(this)) {
    setObjectName("card");
    title_->setObjectName("caption");
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(16, 12, 16, 12);
    layout->setSpacing(8);
    layout->addStretch(1);
    layout->addWidget(title_);
    layout->addLayout(row_);
    layout->addStretch(1);
    row_->setSpacing(6);
    for (int i = 0; i < choices.size(); ++i) {
        auto* button = new QRadioButton(choices[i]);
        button->setCursor(Qt::PointingHandCursor);
        buttons_->addButton(button, i);
        row_->addWidget(button);
    }
    row_->addStretch(1);
    connect(buttons_, &QButtonGroup::idClicked, this, &RadioGroup::ChoiceClicked);
    connect(buttons_, &QButtonGroup::idToggled, this, [this](int id, bool checked) {
        if (checked) {
            emit SelectedIndexChanged(id);
        }
    });
}

int RadioGroup::SelectedIndex() const {
    return buttons_->checkedId();
}

bool RadioGroup::SetSelectedIndex(int index) {
    QAbstractButton* button = buttons_->button(index);
    if (button == nullptr) {
        return false;
    }
    button->setChecked(true);
    return true;
}

int RadioGroup::Count() const {
    return static_cast<int>(buttons_->buttons().size());
}

QRadioButton* RadioGroup::Choice(int index) const {
    return qobject_cast<QRadioButton*>(buttons_->button(index));
}

void RadioGroup::SetTitle(const QString& title) {
    title_->setText(title.toUpper());
}

QString RadioGroup::Title() const {
    return title_->text();
}

void RadioGroup::SetChoiceText(int index, const QString& text) {
    if (QRadioButton* button = Choice(index)) {
        button->setText(text);
    }
}

void RadioGroup::AttachToChoice(int index, QWidget* widget) {
    if (QRadioButton* button = Choice(index)) {
        const int at = row_->indexOf(button) + 1;
        row_->insertWidget(at, widget);
        row_->insertSpacing(at + 1, 18);  // keeps the picture with its own choice
    }
}

}  // namespace OrvaneWinUI
