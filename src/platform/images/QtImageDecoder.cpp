#include "platform/images/QtImageDecoder.h"

#include "platform/images/QtImage.h"
#include "platform/images/heif.h"
#include "platform/images/tiff.h"

#include <QBuffer>
#include <QImageReader>

#include <array>

namespace orvo {
namespace {

constexpr std::array acceptedFormats = {"png", "jpeg", "tiff"};

// The largest accepted picture, 8192 x 8192, at eight bytes a pixel. Qt's own limit refuses half of that.
constexpr int mebibytesForOnePicture = 512;

/// Lets one picture take more memory than Qt allows by itself, as long as it lives.
class RaisedAllocationLimit {
public:
    RaisedAllocationLimit() { QImageReader::setAllocationLimit(mebibytesForOnePicture); }
    ~RaisedAllocationLimit() { QImageReader::setAllocationLimit(m_before); }
    RaisedAllocationLimit(const RaisedAllocationLimit&) = delete;
    RaisedAllocationLimit& operator=(const RaisedAllocationLimit&) = delete;

private:
    const int m_before = QImageReader::allocationLimit();
};

/// Which of the accepted formats these bytes are; empty for none of them.
QByteArray formatOf(const QByteArray& bytes) {
    for (const char* format : acceptedFormats) {
        QBuffer buffer;
        buffer.setData(bytes);
        QImageReader reader(&buffer, format);
        // Otherwise every format that Qt knows is tried, animations and drawings among them.
        reader.setAutoDetectImageFormat(false);
        if (reader.canRead()) return format;
    }
    return {};
}

QImage decodeByQt(const QByteArray& bytes) {
    const QByteArray format = formatOf(bytes);
    if (format.isEmpty()) return {};
    QBuffer buffer;
    buffer.setData(bytes);
    QImageReader reader(&buffer, format);
    reader.setAutoDetectImageFormat(false);
    reader.setAutoTransform(true);
    const RaisedAllocationLimit raised;
    return reader.read();
}

}  // namespace

QList<std::optional<QSize>> QtImageDecoder::frameSizes(const QByteArray& bytes) const {
    if (heif::isHeif(bytes)) return heif::frameSizes(bytes);
    const QByteArray format = formatOf(bytes);
    if (format.isEmpty()) return {};
    // Qt reaches a page by walking from the first one, which takes minutes in a file of many small pages.
    if (format == "tiff") return tiff::frameSizes(bytes);
    QBuffer buffer;
    buffer.setData(bytes);
    QImageReader reader(&buffer, format);
    reader.setAutoDetectImageFormat(false);
    const QSize size = reader.size();
    // Without one this is the right beginning and nothing after it: no picture inside.
    return size.isValid() ? QList{std::optional(size)} : QList<std::optional<QSize>>();
}

std::shared_ptr<const DecodedImage> QtImageDecoder::decode(const QByteArray& bytes) const {
    const QImage image = heif::isHeif(bytes) ? heif::decode(bytes) : decodeByQt(bytes);
    return image.isNull() ? nullptr : std::make_shared<QtImage>(image);
}

}  // namespace orvo
