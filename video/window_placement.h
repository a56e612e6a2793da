// Where the windows go, from the screen's size or its work area.
#pragma once

#include <QPoint>
#include <QRect>
#include <QSize>

#include "video/frame_size.h"

// `size` at `offset` from the work area's top-left corner: the work area need
// not start at the screen's origin (a panel on the left or at the top).
QRect PlaceInWorkArea(const QRect& workArea, QPoint offset, QSize size);

// Right of the work area's middle, 10 pixels in from its right edge and 10
// below its middle, at the preview's size.
QRect PreviewPlacement(const QRect& workArea, FrameSize frame);

constexpr FrameSize kPlayerWindowSize{798, 398};

// A fixed place inside a 1028 by 730 area centred on the screen, 798 by 398.
// Applied as it is on narrower screens too.
QRect PlayerPlacement(QSize screen);
