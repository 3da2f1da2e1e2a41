#include "platform/readFile.h"

#include "platform/FileDescriptor.h"
#include "platform/systemError.h"

#include <algorithm>
#include <cerrno>

#include <fcntl.h>
#include <sys/stat.h>

namespace orvo {

Result<QByteArray> readFile(const FilePath& file, qsizetype limit) {
    // O_NONBLOCK: a pipe at this name must not hold us up before it can be looked at.
    const FileDescriptor descriptor(
        open(file.bytes().constData(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    if (!descriptor.isOpen()) return systemFailure(errno, file);
    Result<QByteArray> content = readFile(descriptor.number(), limit);
    if (!content) return systemFailure(content.error().code, file);
    return content;
}

Result<QByteArray> readFile(int descriptor, qsizetype limit) {
    struct stat status{};
    if (fstat(descriptor, &status) != 0) return systemFailure(errno);
    if (S_ISDIR(status.st_mode)) return systemFailure(EISDIR);
    if (!S_ISREG(status.st_mode)) return systemFailure(EINVAL);
    if (status.st_size > limit) return systemFailure(EFBIG);

    // One byte more than expected, so that the usual file needs no second round; it may grow meanwhile.
    QByteArray content(static_cast<qsizetype>(status.st_size) + 1, Qt::Uninitialized);
    qsizetype filled = 0;
    while (true) {
        const ssize_t count = pread(descriptor, content.data() + filled,
                                    static_cast<size_t>(content.size() - filled), static_cast<off_t>(filled));
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) return systemFailure(errno);
        if (count == 0) break;
        filled += static_cast<qsizetype>(count);
        if (filled > limit) return systemFailure(EFBIG);
        if (filled == content.size()) content.resize(std::min(filled * 2, limit + 1));
    }
    content.truncate(filled);
    return content;
}

}  // namespace orvo
