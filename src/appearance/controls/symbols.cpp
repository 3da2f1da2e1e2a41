#include "appearance/controls/symbols.h"

#include "appearance/controls/painting.h"

#include <QFile>
#include <QPainter>
#include <QPixmapCache>
#include <QSvgRenderer>

#include <cmath>

namespace orvo {
namespace {

QByteArray drawingOf(const QString& name) {
    for (const QString& candidate : {name, QStringLiteral("puzzlepiece.extension")}) {
        QFile file(QStringLiteral(":/symbols/%1.svg").arg(candidate));
        if (file.open(QIODevice::ReadOnly)) return file.readAll();
    }
    return {};
}

/// What stands for a symbol when the program was built without the icon set.
void paintDot(QPainter& painter, int size, const QColor& color) {
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(color);
    painter.drawEllipse(QPointF(size / 2.0, size / 2.0), size / 6.0, size / 6.0);
}

QPixmap draw(const QString& name, const QColor& color, int size, double dpr) {
    QPixmap pixmap(QSize(size, size) * dpr);
    pixmap.setDevicePixelRatio(dpr);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    QByteArray drawing = drawingOf(name);
    if (drawing.isEmpty()) {
        paintDot(painter, size, color);
        return pixmap;
    }
    // The set is drawn with lines of 2 in a box of 24; 36 / size makes them 1.5 dip wide. Opacity is applied
    // to the whole, so that crossing lines do not show.
    drawing.replace("currentColor", color.name(QColor::HexRgb).toLatin1());
    drawing.replace("stroke-width=\"2\"", "stroke-width=\"" + QByteArray::number(36.0 / size) + '"');
    painter.setOpacity(color.alphaF());
    QSvgRenderer(drawing).render(&painter, QRectF(0, 0, size, size));
    return pixmap;
}

}  // namespace

QPixmap symbolPixmap(const QString& name, const QColor& color, int size, double devicePixelRatio) {
    const QString key =
        QStringLiteral("orvo-symbol/%1/%2/%3/%4").arg(name).arg(color.rgba()).arg(size).arg(devicePixelRatio);
    QPixmap pixmap;
    if (!QPixmapCache::find(key, &pixmap)) {
        pixmap = draw(name, color, size, devicePixelRatio);
        QPixmapCache::insert(key, pixmap);
    }
    return pixmap;
}

void paintSymbol(QPainter& painter, const QRectF& area, const QString& name, const QColor& color, int size) {
    const QPointF corner = area.center() - QPointF(size / 2.0, size / 2.0);
    const QRectF place = snapped(painter, QRectF(corner, QSizeF(size, size)));
    painter.drawPixmap(place.topLeft(),
                       symbolPixmap(name, color, size, painter.device()->devicePixelRatioF()));
}

}  // namespace orvo
