#pragma once

#include "platform/ImageDecoder.h"

#include <QMap>

namespace orvo {

/// Knows the pictures it is told about, by their bytes.
class FakeImageDecoder final : public ImageDecoder {
public:
    struct Picture {
        QList<std::optional<QSize>> frames;
        /// Nothing: the picture does not decode.
        std::optional<QSizeF> displaySize;
    };
    QMap<QByteArray, Picture> pictures;

    QList<std::optional<QSize>> frameSizes(const QByteArray& bytes) const override {
        return pictures.value(bytes).frames;
    }
    std::shared_ptr<const DecodedImage> decode(const QByteArray& bytes) const override {
        const Picture picture = pictures.value(bytes);
        if (!picture.displaySize) return nullptr;
        return std::make_shared<Image>(*picture.displaySize);
    }

private:
    class Image final : public DecodedImage {
    public:
        explicit Image(QSizeF size) : m_size(size) {}
        QSizeF displaySize() const override { return m_size; }

    private:
        QSizeF m_size;
    };
};

}  // namespace orvo
