// A small clickable picture of a check mark: lit when checked, dim otherwise.
#pragma once

#include <QWidget>

#include "ui/ui_export.h"

namespace OrvaneWinUI {

class ORVANE_UI_EXPORT CheckImage : public QWidget {
    Q_OBJECT
public:
    explicit CheckImage(QWidget* parent = nullptr);

    bool IsChecked() const { return checked_; }
    void SetChecked(bool checked);
    QSize sizeHint() const override { return {26, 26}; }

signals:
    void Clicked();

protected:
    void paintEvent(QPaintEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

private:
    bool checked_ = false;
};

}  // namespace OrvaneWinUI
