#pragma once

#include <QByteArray>
#include <QImage>
#include <QList>
#include <QSize>

#include <optional>

namespace orvo {

/// What the module "orvo_pictures" does; each as in heif.h and tiff.h.
struct PictureFormats {
    QList<std::optional<QSize>> (*heifFrameSizes)(const QByteArray& bytes);
    QImage (*decodeHeif)(const QByteArray& bytes);
    QList<std::optional<QSize>> (*tiffFrameSizes)(const QByteArray& bytes);
};

/// The module's one function.
using PictureFormatsFunction = const PictureFormats* (*)();
inline constexpr auto pictureFormatsSymbol = "orvoPictureFormats";

}  // namespace orvo
