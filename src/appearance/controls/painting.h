#pragma once

#include "appearance/Roles.h"

#include <QColor>
#include <QRectF>

class QPainter;

namespace orvo {

/// The four colours in which words are written.
enum class Ink { Text, Muted, Accent, Danger };

QColor toQColor(Rgb color);
QColor toQColor(const Rgba& color);
/// A connector's own colour for its symbol, or the muted one where the palette would hide it: connectors that
/// were written by hand may have any colour, or none, which counts as black.
Rgb symbolColor(Rgb own, const Roles& roles);
QColor inkColor(const Roles& roles, Ink ink);
/// `from` blended toward `to` by `amount` (0 to 1), opacity included.
QColor blended(const QColor& from, const QColor& to, double amount);

/// `rect` moved to whole pixels of the device that is painted on.
QRectF snapped(const QPainter& painter, const QRectF& rect);

/// Fills a rectangle with round corners, smooth and on whole pixels.
void fillRounded(QPainter& painter, const QRectF& rect, double radius, const QColor& fill);

/// Draws a line of `width` dip just inside `rect`, sharp at every scale.
void strokeRounded(QPainter& painter, const QRectF& rect, double radius, const QColor& line,
                   double width = 1);

/// The mark of selection and keyboard focus: a stroke of 2.
void strokeRing(QPainter& painter, const QRectF& rect, double radius, const QColor& line);

/// What floats above a window: a panel (notice, sheet, alert) or a small tip.
enum class Elevation { Panel, Tip };

/// The shadow of a floating rectangle; reaches at most `shadowReach` dip beyond it.
void paintShadow(QPainter& painter, const QRectF& rect, double radius, Elevation elevation);
inline constexpr int shadowReach = 48;

}  // namespace orvo
