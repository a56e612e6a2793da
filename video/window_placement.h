// Where the two video pop-ups go, from the screen's size.
#pragma once

#include <QRect>
#include <QSize>

#include "video/frame_size.h"

// Right of the work area's middle, 10 pixels in from its right edge and 10
// below its middle, at the preview's size.
QRect PreviewPlacement(QSize workArea, FrameSize frame);

constexpr FrameSize kPlayerWindowSize{798, 398};

// A fixed place inside a 1028 by 730 area centred on the screen, 798 by 398.
// Applied as it is on narrower screens too.
QRect PlayerPlacement(QSize screen);
