#include "appearance/controls/painting.h"

#include "appearance/ColorMath.h"

#include <QPaintDevice>
#include <QPainter>
#include <QPainterPath>

#include <algorithm>
#include <cmath>

namespace orvo {

QColor toQColor(Rgb color) {
    return {color.red, color.green, color.blue};
}

QColor toQColor(const Rgba& color) {
    QColor result = toQColor(color.rgb);
    result.setAlphaF(static_cast<float>(color.alpha));
    return result;
}

Rgb symbolColor(Rgb own, const Roles& roles) {
    constexpr double barelySeen = 1.8;
    return contrastRatio(own, roles.surface) < barelySeen ? roles.muted : own;
}

QColor inkColor(const Roles& roles, Ink ink) {
    switch (ink) {
        case Ink::Text:
            return toQColor(roles.text);
        case Ink::Muted:
            return toQColor(roles.muted);
        case Ink::Accent:
            return toQColor(roles.accent);
        case Ink::Danger:
            return toQColor(roles.danger);
    }
    Q_UNREACHABLE();
}

QColor blended(const QColor& from, const QColor& to, double amount) {
    if (amount <= 0) return from;
    if (amount >= 1) return to;
    // A fully transparent end lends only its opacity, so that fading in does not pass through black.
    const QColor start = from.alpha() == 0 ? QColor(to.red(), to.green(), to.blue(), 0) : from;
    const QColor end = to.alpha() == 0 ? QColor(from.red(), from.green(), from.blue(), 0) : to;
    const auto part = [amount](float a, float b) {
        return a + (b - a) * static_cast<float>(amount);
    };
    return QColor::fromRgbF(part(start.redF(), end.redF()), part(start.greenF(), end.greenF()),
                            part(start.blueF(), end.blueF()), part(start.alphaF(), end.alphaF()));
}

QRectF snapped(const QPainter& painter, const QRectF& rect) {
    const QTransform transform = painter.deviceTransform();
    if (transform.type() > QTransform::TxScale) return rect;
    const QRectF device = transform.mapRect(rect);
    const QPointF topLeft(std::round(device.left()), std::round(device.top()));
    const QPointF bottomRight(std::round(device.right()), std::round(device.bottom()));
    return transform.inverted().mapRect(QRectF(topLeft, bottomRight));
}

void fillRounded(QPainter& painter, const QRectF& rect, double radius, const QColor& fill) {
    if (fill.alpha() == 0) return;
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(fill);
    painter.drawRoundedRect(snapped(painter, rect), radius, radius);
    painter.restore();
}

void strokeRounded(QPainter& painter, const QRectF& rect, double radius, const QColor& line, double width) {
    if (line.alpha() == 0) return;
    const double dpr = painter.device()->devicePixelRatioF();
    const double pen = std::max(1.0, std::round(width * dpr)) / dpr;
    const QRectF inner = snapped(painter, rect).adjusted(pen / 2, pen / 2, -pen / 2, -pen / 2);
    const double innerRadius = std::max(0.0, radius - pen / 2);
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(line, pen));
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(inner, innerRadius, innerRadius);
    painter.restore();
}

void strokeRing(QPainter& painter, const QRectF& rect, double radius, const QColor& line) {
    strokeRounded(painter, rect, radius, line, 2);
}

}  // namespace orvo
