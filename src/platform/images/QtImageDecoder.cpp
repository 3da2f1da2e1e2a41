#include "platform/images/QtImageDecoder.h"

#include "platform/images/PictureFormats.h"
#include "platform/images/QtImage.h"
#include "platform/loadModule.h"

#include <QBuffer>
#include <QImageReader>

#include <algorithm>
#include <array>

namespace orvo {
namespace {

// Still pictures and sequences coded with HEVC, and the two general brands that some cameras write first.
constexpr std::array acceptedBrands = {"heic", "heix", "heim", "heis", "hevc",
                                       "hevx", "hevm", "hevs", "mif1", "msf1"};

constexpr std::array acceptedFormats = {"png", "jpeg", "tiff"};

// The largest accepted picture, 8192 x 8192, at eight bytes a pixel. Qt's own limit refuses half of that.
constexpr int mebibytesForOnePicture = 512;

/// The bytes begin as an HEIC file does, or as its general kind, HEIF.
bool isHeif(const QByteArray& bytes) {
    // A box of type "ftyp" comes first; its main brand follows, then a version, then all brands.
    if (bytes.size() < 12 || bytes.mid(4, 4) != "ftyp") return false;
    const QByteArray brand = bytes.mid(8, 4);
    return std::ranges::any_of(acceptedBrands, [&brand](const char* accepted) { return brand == accepted; });
}

/// Null when the module is missing; what it would read is then no picture.
const PictureFormats* formats() {
    static const auto function =
        reinterpret_cast<PictureFormatsFunction>(loadModule("orvo_pictures", pictureFormatsSymbol));
    return function ? function() : nullptr;
}

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
    if (isHeif(bytes)) return formats() ? formats()->heifFrameSizes(bytes) : QList<std::optional<QSize>>();
    const QByteArray format = formatOf(bytes);
    if (format.isEmpty()) return {};
    // Qt reaches a page by walking from the first one, which takes minutes in a file of many small pages.
    if (format == "tiff") return formats() ? formats()->tiffFrameSizes(bytes) : QList<std::optional<QSize>>();
    QBuffer buffer;
    buffer.setData(bytes);
    QImageReader reader(&buffer, format);
    reader.setAutoDetectImageFormat(false);
    const QSize size = reader.size();
    // Without one this is the right beginning and nothing after it: no picture inside.
    return size.isValid() ? QList{std::optional(size)} : QList<std::optional<QSize>>();
}

std::shared_ptr<const DecodedImage> QtImageDecoder::decode(const QByteArray& bytes) const {
    QImage image;
    if (!isHeif(bytes))
        image = decodeByQt(bytes);
    else if (formats())
        image = formats()->decodeHeif(bytes);
    return image.isNull() ? nullptr : std::make_shared<QtImage>(image);
}

}  // namespace orvo
