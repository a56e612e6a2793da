// A state shown large in its own colour (connection, battery, firmware).
#pragma once

#include <QColor>
#include <QLabel>

#include "ui/ui_export.h"

namespace OrvaneWinUI {

class ORVANE_UI_EXPORT StatusLabel : public QLabel {
    Q_OBJECT
public:
    explicit StatusLabel(const QString& text, const QColor& color, QWidget* parent = nullptr);

    void SetText(const QString& text) { setText(text); }
    void SetTextColor(const QColor& color);
    QColor TextColor() const { return color_; }
    // Both at once, as the connection handlers set them.
    void SetStatus(const QString& text, const QColor& color);

private:
    QColor color_;
};

}  // namespace OrvaneWinUI
