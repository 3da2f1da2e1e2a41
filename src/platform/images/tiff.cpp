#include "platform/images/tiff.h"

#include <tiffio.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <limits>
#include <memory>

namespace orvo::tiff {
namespace {

/// The file as the library wants it: like one on a disk, where a place behind the end may be sought.
struct Reader {
    const QByteArray& bytes;
    toff_t place = 0;
};

Reader& readerOf(thandle_t handle) {
    return *static_cast<Reader*>(handle);
}

toff_t size(thandle_t handle) {
    return static_cast<toff_t>(readerOf(handle).bytes.size());
}

tmsize_t read(thandle_t handle, void* target, tmsize_t wanted) {
    Reader& reader = readerOf(handle);
    if (wanted <= 0 || reader.place >= size(handle)) return 0;
    const toff_t taken = std::min(static_cast<toff_t>(wanted), size(handle) - reader.place);
    std::memcpy(target, reader.bytes.constData() + reader.place, taken);
    reader.place += taken;
    return static_cast<tmsize_t>(taken);
}

tmsize_t refuseToWrite(thandle_t, void*, tmsize_t) {
    return 0;
}

toff_t seek(thandle_t handle, toff_t offset, int origin) {
    Reader& reader = readerOf(handle);
    const toff_t from = origin == SEEK_CUR ? reader.place : origin == SEEK_END ? size(handle) : 0;
    reader.place = from + offset;
    return reader.place;
}

int leaveOpen(thandle_t) {
    return 0;
}

// A damaged file is an answer here, not news for the terminal.
int staySilent(TIFF*, void*, const char*, const char*, va_list) {
    return 1;
}

using File = std::unique_ptr<TIFF, decltype(&TIFFClose)>;

File open(Reader& reader) {
    const std::unique_ptr<TIFFOpenOptions, decltype(&TIFFOpenOptionsFree)> options(TIFFOpenOptionsAlloc(),
                                                                                   TIFFOpenOptionsFree);
    TIFFOpenOptionsSetErrorHandlerExtR(options.get(), staySilent, nullptr);
    TIFFOpenOptionsSetWarningHandlerExtR(options.get(), staySilent, nullptr);
    // "m": not mapped into memory.
    return {TIFFClientOpenExt("picture", "rm", &reader, read, refuseToWrite, seek, leaveOpen, size, nullptr,
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
    Reader reader{.bytes = bytes};
    const File file = open(reader);
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
