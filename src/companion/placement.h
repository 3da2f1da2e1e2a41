#pragma once

#include <QList>
#include <QPointF>
#include <QRectF>
#include <QSizeF>

#include <optional>

namespace orvo {

/// A rectangle in the coordinates in which places are kept: x grows to the right, y grows upward, and the
/// origin is the rectangle's lower left corner. In dip.
struct DeskRect {
    double x = 0;
    double y = 0;
    double width = 0;
    double height = 0;

    double maxX() const { return x + width; }
    double maxY() const { return y + height; }
    bool intersects(const DeskRect& other) const {
        return x < other.maxX() && other.x < maxX() && y < other.maxY() && other.y < maxY();
    }
    bool operator==(const DeskRect&) const = default;
};

/// One screen: all of it, and what panels and docks leave of it.
struct DeskScreen {
    DeskRect frame;
    DeskRect visibleFrame;

    bool operator==(const DeskScreen&) const = default;
};

/// The origin nearest to `origin` with which a window of `size` lies within `frame`; one that is larger
/// begins at the frame's left or lower edge.
QPointF boundedOrigin(QPointF origin, QSizeF size, const DeskRect& frame);

/// Where the pet may stand, `screens` in the system's order, the main one first. Nothing without a screen.
std::optional<QPointF> constrainedOrigin(const DeskRect& pet, const QList<DeskScreen>& screens);

/// Where the pet stands at first: the main screen's lower right corner. Nothing without a screen.
std::optional<QPointF> defaultOrigin(QSizeF pet, const QList<DeskScreen>& screens);

/// Where the quick draft opens: to the right of the pet, or to its left where the screen ends. Nothing
/// without a screen.
std::optional<QPointF> controlsOrigin(const DeskRect& pet, QSizeF controls, const QList<DeskScreen>& screens);

/// A rectangle of the toolkit, whose y grows downward from the main screen's upper edge, the other way round,
/// and back. `mainHeight` is the main screen's height; it lies at the top of the toolkit's plane.
DeskRect deskRect(const QRectF& rect, double mainHeight);
QRectF toolkitRect(const DeskRect& rect, double mainHeight);

}  // namespace orvo
