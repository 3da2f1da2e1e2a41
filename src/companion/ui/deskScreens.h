#pragma once

#include "companion/placement.h"

#include <QPoint>

namespace orvo {

/// The screens as they are now, the main one first, in the coordinates of places.
QList<DeskScreen> deskScreens();

/// Where the toolkit puts the upper left corner of a window that stands at `origin`.
QPoint toolkitCorner(QPointF origin, QSizeF size);

}  // namespace orvo
