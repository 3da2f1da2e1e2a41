#include "appearance/controls/OrvoMark.h"

#include "appearance/controls/OrvoStyle.h"
#include "appearance/controls/painting.h"

#include <QPainter>
#include <QPainterPath>
#include <QSvgRenderer>

namespace orvo {
namespace brand {
namespace {

constexpr double center = 16;
constexpr double ringRadius = 7.4;
constexpr double ringWidth = 3.2;
constexpr QRectF ellipse(-13.2, -4.9, 26.4, 9.8);
constexpr double tilt = -26;
// Where the piece behind ends, seen from the left end of the ellipse: at (-9.6, -3.35).
constexpr double behindSweep = -43.3;

/// From the ellipse's own axes to the box.
QPainterPath placed(const QPainterPath& path) {
    return QTransform().translate(center, center).rotate(tilt).map(path);
}

}  // namespace

QPainterPath orbit() {
    QPainterPath path;
    path.arcMoveTo(ellipse, 180);
    path.arcTo(ellipse, 180, 180);
    return placed(path);
}

QPainterPath orbitBehind() {
    QPainterPath path;
    path.arcMoveTo(ellipse, 180);
    path.arcTo(ellipse, 180, behindSweep);
    return placed(path);
}

QPainterPath ringBehind(const QPainterPath& front, const Ring& ring, double gap) {
    // Qt flattens curves to cut them; done at many times the size, the corners are too small to be seen.
    constexpr double fine = 12;
    QPainterPath outline;
    outline.addEllipse(ring.center * fine, ring.outer * fine, ring.outer * fine);
    QPainterPath hole;
    hole.addEllipse(ring.center * fine, ring.inner * fine, ring.inner * fine);
    QPainterPathStroker cut;
    cut.setWidth(gap * fine);
    cut.setCapStyle(Qt::RoundCap);
    const QPainterPath gapPath = cut.createStroke(QTransform::fromScale(fine, fine).map(front));
    return QTransform::fromScale(1 / fine, 1 / fine).map(outline.subtracted(hole).subtracted(gapPath));
}

QPainterPath ring() {
    // Cutting is slow, and the mark stands on every page.
    static const QPainterPath cut =
        ringBehind(orbit(), {{center, center}, ringRadius + ringWidth / 2, ringRadius - ringWidth / 2}, 4.4);
    return cut;
}

QPointF dot() {
    return placed(QPainterPath(QPointF(ellipse.right(), 0))).currentPosition();
}

}  // namespace brand

// By our own renderer: Qt's icon engine for drawings is a plugin to be searched and loaded.
QIcon brandIcon() {
    QSvgRenderer drawing(QStringLiteral(":/brand/orvo.svg"));
    QIcon icon;
    for (const int size : {16, 32, 64, 128}) {
        QPixmap picture(size, size);
        picture.fill(Qt::transparent);
        QPainter painter(&picture);
        drawing.render(&painter);
        painter.end();
        icon.addPixmap(picture);
    }
    return icon;
}

void paintOrvoMark(QPainter& painter, const QRectF& box, const QColor& text, const QColor& accent) {
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(box.topLeft());
    painter.scale(box.width() / 32, box.height() / 32);
    painter.fillPath(brand::ring(), text);
    const QPen pen(accent, brand::orbitWidth, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin);
    painter.strokePath(brand::orbitBehind(), pen);
    painter.strokePath(brand::orbit(), pen);
    painter.setPen(Qt::NoPen);
    painter.setBrush(accent);
    painter.drawEllipse(brand::dot(), brand::dotRadius, brand::dotRadius);
    painter.restore();
}

OrvoMark::OrvoMark(int size, QWidget* parent) : QWidget(parent) {
    Q_ASSERT(size >= 24);
    setFixedSize(size, size);
}

void OrvoMark::paintEvent(QPaintEvent*) {
    const Roles& roles = rolesOf(this);
    QPainter painter(this);
    paintOrvoMark(painter, rect(), toQColor(roles.text), toQColor(roles.accent));
}

}  // namespace orvo
