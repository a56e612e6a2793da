// Colours and the style sheet of the control: a dark face, so the connected
// lime reads from a step away.
#pragma once

#include <QColor>
#include <QString>

#include "ui/ui_export.h"

namespace OrvaneWinUI {

// Connection states as the dialog shows them.
inline const QColor kConnectedColor{211, 255, 70};
inline const QColor kDisconnectedColor{255, 0, 0};
// Plain values (battery, firmware) and captions.
inline const QColor kValueColor{236, 240, 244};
inline const QColor kCaptionColor{140, 150, 162};

ORVANE_UI_EXPORT QString ControlStyleSheet();

}  // namespace OrvaneWinUI
