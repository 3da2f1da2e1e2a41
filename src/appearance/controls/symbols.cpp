#include "appearance/controls/symbols.h"

#include "appearance/controls/painting.h"

#include <QFile>
#include <QGuiApplication>
#include <QHash>
#include <QPainter>
#include <QPixmapCache>
#include <QSvgRenderer>
#include <QThreadPool>

#include <cmath>
#include <memory>
#include <mutex>

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
void paintDot(QPainter& painter, int size) {
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(Qt::black);
    painter.drawEllipse(QPointF(size / 2.0, size / 2.0), size / 6.0, size / 6.0);
}

/// A symbol in black. Any thread.
QImage draw(const QString& name, int size, double scale) {
    QImage image(QSize(size, size) * scale, QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(scale);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    QByteArray drawing = drawingOf(name);
    if (drawing.isEmpty()) {
        paintDot(painter, size);
        return image;
    }
    // The set is drawn with lines of 2 in a box of 24; 36 / size makes them 1.5 dip wide.
    drawing.replace("currentColor", "#000000");
    drawing.replace("stroke-width=\"2\"", "stroke-width=\"" + QByteArray::number(36.0 / size) + '"');
    QSvgRenderer(drawing).render(&painter, QRectF(0, 0, size, size));
    return image;
}

/// A symbol that is drawn once, by whoever comes first: a thread that prepares it or the window that needs
/// it.
class Drawing {
public:
    Drawing(const QString& name, int size, double scale) : m_name(name), m_size(size), m_scale(scale) {}

    /// Any thread; waits where another one is drawing.
    const QImage& image() {
        std::call_once(m_once, [this] { m_image = draw(m_name, m_size, m_scale); });
        return m_image;
    }

private:
    QString m_name;
    int m_size;
    double m_scale;
    std::once_flag m_once;
    QImage m_image;
};

struct Found {
    std::shared_ptr<Drawing> drawing;
    bool isNew = false;
};

/// Window's thread.
Found find(const QString& name, int size, double scale) {
    static QHash<QString, std::shared_ptr<Drawing>> drawings;
    std::shared_ptr<Drawing>& drawing = drawings[QStringLiteral("%1/%2/%3").arg(name).arg(size).arg(scale)];
    if (drawing) return {drawing};
    drawing = std::make_shared<Drawing>(name, size, scale);
    return {drawing, true};
}

QPixmap inColor(QImage drawing, const QColor& color) {
    QPainter painter(&drawing);
    painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
    painter.fillRect(QRectF(QPointF(), drawing.deviceIndependentSize()), color);
    painter.end();
    return QPixmap::fromImage(std::move(drawing));
}

}  // namespace

void prepareSymbol(const QString& name, int size) {
    if (name.isEmpty()) return;
    const Found found = find(name, size, qGuiApp->devicePixelRatio());
    if (found.isNew) QThreadPool::globalInstance()->start([drawing = found.drawing] { drawing->image(); });
}

QPixmap symbolPixmap(const QString& name, const QColor& color, int size, double devicePixelRatio) {
    const QString key =
        QStringLiteral("orvo-symbol/%1/%2/%3/%4").arg(name).arg(color.rgba()).arg(size).arg(devicePixelRatio);
    QPixmap pixmap;
    if (!QPixmapCache::find(key, &pixmap)) {
        pixmap = inColor(find(name, size, devicePixelRatio).drawing->image(), color);
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
