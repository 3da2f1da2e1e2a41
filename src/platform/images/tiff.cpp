#include "platform/images/tiff.h"

#include <QBuffer>

#include <tiffio.h>

#include <limits>
#include <memory>

namespace orvo::tiff {
namespace {

QBuffer& bufferOf(thandle_t handle) {
    return *static_cast<QBuffer*>(handle);
}

tmsize_t read(thandle_t handle, void* target, tmsize_t size) {
    return bufferOf(handle).read(static_cast<char*>(target), size);
}

tmsize_t refuseToWrite(thandle_t, void*, tmsize_t) {
    return 0;
}

toff_t size(thandle_t handle) {
    return static_cast<toff_t>(bufferOf(handle).size());
}

toff_t seek(thandle_t handle, toff_t offset, int origin) {
    QBuffer& buffer = bufferOf(handle);
    const auto from = origin == SEEK_CUR ? buffer.pos() : origin == SEEK_END ? buffer.size() : 0;
    return buffer.seek(from + static_cast<qint64>(offset)) ? static_cast<toff_t>(buffer.pos())
                                                           : std::numeric_limits<toff_t>::max();
}

int leaveOpen(thandle_t) {
    return 0;
}

// A damaged file is an answer here, not news for the terminal.
int staySilent(TIFF*, void*, const char*, const char*, va_list) {
    return 1;
}

using File = std::unique_ptr<TIFF, decltype(&TIFFClose)>;

File open(QBuffer& buffer) {
    const std::unique_ptr<TIFFOpenOptions, decltype(&TIFFOpenOptionsFree)> options(TIFFOpenOptionsAlloc(),
                                                                                   TIFFOpenOptionsFree);
    TIFFOpenOptionsSetErrorHandlerExtR(options.get(), staySilent, nullptr);
    TIFFOpenOptionsSetWarningHandlerExtR(options.get(), staySilent, nullptr);
    // "m": not mapped into memory.
    return {TIFFClientOpenExt("picture", "rm", &buffer, read, refuseToWrite, seek, leaveOpen, size, nullptr,
                              nullptr, options.get()),
            TIFFClose};
}

std::optional<QSize> sizeOfPage(TIFF* file) {
    quint32 width = 0;
    quint32 height = 0;
    constexpr quint32 most = std::numeric_limits<int>::max();
    if (TIFFGetField(file, TIFFTAG_IMAGEWIDTH, &width) != 1) return std::nullopt;
    if (TIFFGetField(file, TIFFTAG_IMAGELENGTH, &height) != 1) return std::nullopt;
    return QSize(static_cast<int>(std::min(width, most)), static_cast<int>(std::min(height, most)));
}

}  // namespace

QList<std::optional<QSize>> frameSizes(const QByteArray& bytes) {
    QBuffer buffer;
    buffer.setData(bytes);
    if (!buffer.open(QIODevice::ReadOnly)) return {};
    const File file = open(buffer);
    if (!file) return {};
    QList<std::optional<QSize>> sizes = {sizeOfPage(file.get())};
    while (TIFFLastDirectory(file.get()) == 0) {
        if (TIFFReadDirectory(file.get()) == 0) {
            sizes.append(std::nullopt);
            break;
        }
        sizes.append(sizeOfPage(file.get()));
    }
    return sizes;
}

}  // namespace orvo::tiff
