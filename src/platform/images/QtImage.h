#pragma once

#include "platform/ImageDecoder.h"

#include <QImage>

namespace orvo {

/// The picture that this application's decoder makes and its widgets draw.
class QtImage final : public DecodedImage {
public:
    /// More pixels than this on a side are never shown; a larger picture is kept scaled down to it.
    static constexpr int largestKeptSide = 1024;

    explicit QtImage(const QImage& image);

    /// Premultiplied, in the screen's usual colours, without a device pixel ratio.
    const QImage& image() const { return m_image; }
    QSizeF displaySize() const override { return m_displaySize; }

    /// What to draw for `picture`; a null image without one.
    static QImage of(const DecodedImage* picture);

private:
    QSizeF m_displaySize;
    QImage m_image;
};

}  // namespace orvo
