#pragma once

#include <QByteArray>
#include <QList>
#include <QSize>

#include <memory>
#include <optional>

namespace orvo {

/// A picture that can be shown. Models hand it on; what draws it knows the kind that its decoder makes.
class DecodedImage {
public:
    virtual ~DecodedImage() = default;

    /// In the units of a screen: pixels at the resolution that the file records. Zero when there is nothing
    /// to show.
    virtual QSizeF displaySize() const = 0;
};

/// Reads pictures from files' bytes. Main thread only.
class ImageDecoder {
public:
    virtual ~ImageDecoder() = default;

    /// The pixel size of every picture in the file, found without decoding any; one without a size is absent.
    /// An empty list when the bytes are no picture of an accepted kind (PNG, JPEG, HEIC, TIFF).
    virtual QList<std::optional<QSize>> frameSizes(const QByteArray& bytes) const = 0;
    /// The first picture, upright; null when it does not decode.
    virtual std::shared_ptr<const DecodedImage> decode(const QByteArray& bytes) const = 0;
};

}  // namespace orvo
