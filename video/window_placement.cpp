#include "video/window_placement.h"

QRect PlaceInWorkArea(const QRect& workArea, QPoint offset, QSize size) {
    return {workArea.topLeft() + offset, size};
}

QRect PreviewPlacement(const QRect& workArea, FrameSize frame) {
    return PlaceInWorkArea(workArea,
                           {workArea.width() - frame.width - 10, workArea.height() / 2 + 10},
                           {frame.width, frame.height});
}

QRect PlayerPlacement(QSize screen) {
    // Halves in single precision, truncated toward zero.
    const int x = 25 + static_cast<int>(static_cast<float>(screen.width() - 1028) / 2.0f);
    const int y = 184 + static_cast<int>(static_cast<float>(screen.height() - 730) / 2.0f);
    return {x, y, kPlayerWindowSize.width, kPlayerWindowSize.height};
}
