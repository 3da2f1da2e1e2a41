#pragma once

#include <QWidget>

class QPainterPath;

namespace orvo {

/// The outlines of the brand mark in a box of 32: a ring with a gap where the orbit passes in front of it.
/// Widgets, hero art and the application's icon are all made from them.
namespace brand {
/// The ring's outline, with the gap cut out; `gap` is the width of the cut.
QPainterPath ring(double gap = 4.4);
/// The centre line of the orbit in front of the ring, from left to right.
QPainterPath orbit();
/// The short piece of the orbit behind.
QPainterPath orbitBehind();
/// Where the dot stands: the right end of the orbit.
QPointF dot();
inline constexpr double orbitWidth = 1.8;
inline constexpr double dotRadius = 2.7;
}  // namespace brand

/// Paints the mark into `box`, which is a square of at least 24 dip.
void paintOrvoMark(QPainter& painter, const QRectF& box, const QColor& text, const QColor& accent);

/// The brand mark in the theme's colours. `size` is at least 24.
class OrvoMark final : public QWidget {
    Q_OBJECT

public:
    explicit OrvoMark(int size, QWidget* parent = nullptr);

protected:
    void paintEvent(QPaintEvent* event) override;
};

}  // namespace orvo
