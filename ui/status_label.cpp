#include "ui/status_label.h"

namespace OrvaneWinUI {

StatusLabel::StatusLabel(const QString& text, const QColor& color, QWidget* parent)
    : QLabel(text, parent) {
    setObjectName("statusValue");
    SetTextColor(color);
}

void StatusLabel::SetTextColor(const QColor& color) {
    color_ = color;
    // A style sheet colour, because the control's sheet would win over a palette.
    setStyleSheet(QStringLiteral("color: %1;").arg(color.name()));
}

void StatusLabel::SetStatus(const QString& text, const QColor& color) {
    setText(text);
    SetTextColor(color);
}

}  // namespace OrvaneWinUI
