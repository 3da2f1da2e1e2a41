#include "appearance/controls/HeroArt.h"

#include "appearance/controls/OrvoMark.h"
#include "appearance/controls/OrvoStyle.h"
#include "appearance/controls/painting.h"

#include <QPainter>
#include <QPainterPath>

#include <cmath>
#include <numbers>

namespace orvo {
namespace {

struct Orbit {
    double a;
    double b;
};

constexpr std::array<Orbit, 3> orbits{{{74, 27.5}, {112, 42}, {150, 58.5}}};
constexpr double tilt = -26;

struct Dot {
    std::size_t orbit;
    double angle;  // degrees around the orbit, 0 at its right end, clockwise
    double radius;
};

constexpr std::array<Dot, 4> places{{{2, 245, 4.5}, {1, 31, 4}, {2, 66, 4.5}, {1, 154, 3.5}}};

QPointF onOrbit(const Orbit& orbit, double degrees) {
    const double angle = degrees * std::numbers::pi / 180;
    return {orbit.a * std::cos(angle), orbit.b * std::sin(angle)};
}

/// The front half of the inner orbit.
QPainterPath frontOrbit() {
    const Orbit& inner = orbits[0];
    const QRectF box(-inner.a, -inner.b, 2 * inner.a, 2 * inner.b);
    QPainterPath front;
    front.arcMoveTo(box, 180);
    front.arcTo(box, 180, 180);
    return front;
}

/// The orbit passes over it, with air around.
const QPainterPath& ring() {
    // Cutting is slow.
    static const QPainterPath cut = brand::ringBehind(frontOrbit(), {QPointF(), 28.5, 19.5}, 8);
    return cut;
}

}  // namespace

void HeroArt::prepare() {
    (void)ring();
}

HeroArt::HeroArt(const std::array<Rgb, 4>& dots, QWidget* parent) : QWidget(parent), m_dots(dots) {
    setFixedSize(320, 216);
}

void HeroArt::paintEvent(QPaintEvent*) {
    const Roles& roles = rolesOf(this);
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(width() / 2.0, height() / 2.0);
    painter.rotate(tilt);

    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(toQColor(roles.border), 1));
    for (const Orbit& orbit : orbits)
        painter.drawEllipse(QPointF(), orbit.a, orbit.b);

    painter.fillPath(ring(), toQColor(roles.text));
    painter.strokePath(frontOrbit(), QPen(toQColor(roles.accent), 2.5, Qt::SolidLine, Qt::RoundCap));

    painter.setPen(Qt::NoPen);
    painter.setBrush(toQColor(roles.accent));
    painter.drawEllipse(onOrbit(orbits[0], 0), 6, 6);
    for (std::size_t i = 0; i < places.size(); ++i) {
        painter.setBrush(toQColor(m_dots[i]));
        painter.drawEllipse(onOrbit(orbits[places[i].orbit], places[i].angle), places[i].radius,
                            places[i].radius);
    }
}

}  // namespace orvo
