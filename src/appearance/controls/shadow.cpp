#include "appearance/controls/painting.h"

#include <QImage>
#include <QPainter>
#include <QPixmap>
#include <QPixmapCache>

#include <array>
#include <cmath>
#include <vector>

namespace orvo {
namespace {

struct ShadowShape {
    double offset;  // downward
    double blur;
    double opacity;
};

ShadowShape shapeOf(Elevation elevation) {
    return elevation == Elevation::Panel ? ShadowShape{12, 32, 0.45} : ShadowShape{4, 12, 0.35};
}

/// One running-mean pass over `count` values, `step` apart.
void blurLine(uchar* values, qsizetype count, qsizetype step, int reach, std::vector<uchar>& scratch) {
    scratch.resize(static_cast<std::size_t>(count));
    const auto at = [&](qsizetype i) -> int {
        return i < 0 || i >= count ? 0 : values[i * step];
    };
    int sum = 0;
    for (qsizetype i = -reach; i <= reach; ++i)
        sum += at(i);
    for (qsizetype i = 0; i < count; ++i) {
        scratch[static_cast<std::size_t>(i)] = static_cast<uchar>(sum / (2 * reach + 1));
        sum += at(i + reach + 1) - at(i - reach);
    }
    for (qsizetype i = 0; i < count; ++i)
        values[i * step] = scratch[static_cast<std::size_t>(i)];
}

/// Three running means come close to a Gaussian whose deviation is half of `blur`.
void blur(QImage& mask, double blur) {
    const int reach = std::max(1, static_cast<int>(std::lround(blur / 2 * 0.94)));
    std::vector<uchar> scratch;
    for (int pass = 0; pass < 3; ++pass) {
        for (int y = 0; y < mask.height(); ++y)
            blurLine(mask.scanLine(y), mask.width(), 1, reach, scratch);
        for (int x = 0; x < mask.width(); ++x) {
            blurLine(mask.bits() + x, mask.height(), mask.bytesPerLine(), reach, scratch);
        }
    }
}

/// The shadow of the smallest rectangle whose corners and edges can be stretched to any other.
QPixmap ninePatch(const ShadowShape& shape, double radius, double dpr, int corner) {
    const QString key = QStringLiteral("orvo-shadow/%1/%2/%3").arg(shape.blur).arg(radius).arg(dpr);
    QPixmap patch;
    if (QPixmapCache::find(key, &patch)) return patch;

    const int side = 2 * corner + 1;
    QImage mask(QSize(side, side) * dpr, QImage::Format_Alpha8);
    mask.fill(0);
    {
        QPainter painter(&mask);
        painter.scale(dpr, dpr);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(Qt::NoPen);
        painter.setBrush(QColor(0, 0, 0, static_cast<int>(std::lround(shape.opacity * 255))));
        const double edge = shape.blur;
        painter.drawRoundedRect(QRectF(edge, edge, side - 2 * edge, side - 2 * edge), radius, radius);
    }
    blur(mask, shape.blur / 2 * dpr);
    QImage image = mask.convertToFormat(QImage::Format_ARGB32_Premultiplied);
    patch = QPixmap::fromImage(image);
    patch.setDevicePixelRatio(dpr);
    QPixmapCache::insert(key, patch);
    return patch;
}

}  // namespace

void paintShadow(QPainter& painter, const QRectF& rect, double radius, Elevation elevation) {
    const ShadowShape shape = shapeOf(elevation);
    const double dpr = painter.device()->devicePixelRatioF();
    // A corner holds the blur on both sides of the edge and the round part.
    const int corner = static_cast<int>(std::ceil(2 * shape.blur + radius));
    const QPixmap patch = ninePatch(shape, radius, dpr, corner);

    const QRectF outer =
        rect.adjusted(-shape.blur, -shape.blur, shape.blur, shape.blur).translated(0, shape.offset);
    const double cut = std::min({static_cast<double>(corner), outer.width() / 2, outer.height() / 2});
    const double side = 2 * corner + 1;
    const std::array<double, 4> x{outer.left(), outer.left() + cut, outer.right() - cut, outer.right()};
    const std::array<double, 4> y{outer.top(), outer.top() + cut, outer.bottom() - cut, outer.bottom()};
    const std::array<double, 4> source{0, cut, side - cut, side};
    painter.save();
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    for (std::size_t row = 0; row < 3; ++row) {
        for (std::size_t column = 0; column < 3; ++column) {
            const QRectF target(QPointF(x[column], y[row]), QPointF(x[column + 1], y[row + 1]));
            const QRectF from(QPointF(source[column], source[row]) * dpr,
                              QPointF(source[column + 1], source[row + 1]) * dpr);
            if (!target.isEmpty()) painter.drawPixmap(target, patch, from);
        }
    }
    painter.restore();
}

}  // namespace orvo
