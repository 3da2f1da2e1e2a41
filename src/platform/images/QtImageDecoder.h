#pragma once

#include "platform/ImageDecoder.h"

namespace orvo {

/// Reads PNG, JPEG and TIFF through Qt's readers, HEIC through libheif. What a file is, its bytes tell,
/// never its name. Its pictures are `QtImage`s.
class QtImageDecoder final : public ImageDecoder {
public:
    QList<std::optional<QSize>> frameSizes(const QByteArray& bytes) const override;
    std::shared_ptr<const DecodedImage> decode(const QByteArray& bytes) const override;
};

}  // namespace orvo
