#include "platform/images/QtImage.h"

#include <QColorSpace>

#include <algorithm>

namespace orvo {
namespace {

// At this resolution a pixel is one unit of the screen: 72 dots an inch.
constexpr double dotsPerMeter = 72 / 0.0254;

// Qt gives a picture that records no resolution the one of the screen.
double unitsPerPixel(int recorded, int ofTheScreen) {
    return recorded <= 0 || recorded == ofTheScreen ? 1.0 : dotsPerMeter / recorded;
}

QSizeF sizeInUnits(const QImage& image) {
    if (image.isNull()) return {};
    const QImage blank(1, 1, QImage::Format_RGB32);
    return {image.width() * unitsPerPixel(image.dotsPerMeterX(), blank.dotsPerMeterX()),
            image.height() * unitsPerPixel(image.dotsPerMeterY(), blank.dotsPerMeterY())};
}

QImage readyToDraw(QImage image) {
    constexpr int side = QtImage::largestKeptSide;
    if (std::max(image.width(), image.height()) > side)
        image = image.scaled(side, side, Qt::KeepAspectRatio, Qt::SmoothTransformation);
    if (image.colorSpace().isValid()) image.convertToColorSpace(QColorSpace::SRgb);
    return std::move(image).convertToFormat(QImage::Format_ARGB32_Premultiplied);
}

}  // namespace

QtImage::QtImage(const QImage& image) : m_displaySize(sizeInUnits(image)), m_image(readyToDraw(image)) {}

QImage QtImage::of(const DecodedImage* picture) {
    const auto* own = dynamic_cast<const QtImage*>(picture);
    return own ? own->image() : QImage();
}

}  // namespace orvo
