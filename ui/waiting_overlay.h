// "Please wait" over the whole control: looks modal and swallows input to the
// controls beneath, while the event loop keeps running.
#pragma once

#include <QWidget>

#include "ui/ui_export.h"

class QTimer;

namespace OrvaneWinUI {

class ORVANE_UI_EXPORT WaitingOverlay : public QWidget {
    Q_OBJECT
public:
    // Covers `parent` and follows its size.
    explicit WaitingOverlay(QWidget* parent);

    void ShowOverlay();
    void HideOverlay();
    void SetText(const QString& text);
    QString Text() const { return text_; }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    QString text_;
    QTimer* spin_;
    int angle_ = 0;
};

}  // namespace OrvaneWinUI
