#include "team_runs/contentCopy.h"

#include "team_runs/ContentHash.h"

#include <QList>
#include <QRandomGenerator>

#include <cerrno>
#include <cstdio>
#include <memory>

#include <fcntl.h>

namespace orvo::RunFiles {
namespace {

constexpr size_t bufferSize = 128 << 10;

tl::unexpected<int> lastError() {
    return tl::unexpected<int>(errno);
}

}  // namespace

SystemResult<QByteArray> copyContent(int from, int to) {
    if (lseek(from, 0, SEEK_SET) != 0) return lastError();
    ContentHash content;
    const auto buffer = std::make_unique_for_overwrite<char[]>(bufferSize);
    while (true) {
        const auto count = readFully(from, buffer.get(), bufferSize);
        if (!count) return tl::unexpected<int>(count.error());
        content.add(buffer.get(), *count);
        const auto written = writeFully(to, buffer.get(), *count);
        if (!written) return tl::unexpected<int>(written.error());
        if (*count < bufferSize) return content.digits();
    }
}

SystemResult<void> moveExclusively(int fromFolder, const QByteArray& from, int toFolder,
                                   const QByteArray& to) {
    if (renameat2(fromFolder, from.constData(), toFolder, to.constData(), RENAME_NOREPLACE) == 0) return {};
    if (errno != EINVAL && errno != ENOSYS) return lastError();
    // File systems without the flag have links; a link, too, never replaces anything.
    if (linkat(fromFolder, from.constData(), toFolder, to.constData(), 0) != 0) return lastError();
    if (unlinkat(fromFolder, from.constData(), 0) == 0) return {};
    const int code = errno;
    unlinkat(toFolder, to.constData(), 0);
    return tl::unexpected<int>(code);
}

SystemResult<void> exchange(int folder, const QByteArray& one, const QByteArray& other) {
    if (renameat2(folder, one.constData(), folder, other.constData(), RENAME_EXCHANGE) == 0) return {};
    return lastError();
}

QByteArray temporaryName() {
    return ".orvo-" + QByteArray::number(QRandomGenerator::system()->generate64(), 16) + ".tmp";
}

}  // namespace orvo::RunFiles
