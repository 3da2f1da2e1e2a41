#pragma once

#include <QIcon>
#include <QPointF>
#include <QWidget>

class QPainterPath;

namespace orvo {

/// The lines of the brand mark in a box of 32: a ring, and an orbit that passes in front of it.
/// resources/brand/orvo.svg shows the same figure.
namespace brand {
struct Ring {
    QPointF center;
    double outer;
    double inner;
};
/// The outline of a ring with a gap, `gap` wide, where the line `front` passes before it.
QPainterPath ringBehind(const QPainterPath& front, const Ring& ring, double gap);

/// The mark's ring, with its gap.
QPainterPath ring();
/// The centre line of the orbit in front of the ring, from left to right.
QPainterPath orbit();
/// The short piece of the orbit behind.
QPainterPath orbitBehind();
/// Where the dot stands: the right end of the orbit.
QPointF dot();
inline constexpr double orbitWidth = 1.8;
inline constexpr double dotRadius = 2.7;
}  // namespace brand

/// The application's icon in the sizes that window managers ask for.
QIcon brandIcon();

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
