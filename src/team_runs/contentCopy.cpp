#include "team_runs/contentCopy.h"

#include "team_runs/ContentHash.h"

#include <QList>
#include <QRandomGenerator>

#include <cerrno>
#include <cstdio>
#include <memory>

#include <fcntl.h>
#include <sys/xattr.h>

namespace orvo::RunFiles {
namespace {

constexpr size_t bufferSize = 128 << 10;

tl::unexpected<int> lastError() {
    return tl::unexpected<int>(errno);
}

bool isWithheld(const QByteArray& attribute) {
    return attribute == "security.capability" || attribute == "security.ima" || attribute == "security.evm";
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

void copyAttributes(int from, int to) {
    const ssize_t size = flistxattr(from, nullptr, 0);
    if (size <= 0) return;
    QByteArray names(static_cast<qsizetype>(size), Qt::Uninitialized);
    const ssize_t listed = flistxattr(from, names.data(), static_cast<size_t>(names.size()));
    if (listed <= 0) return;
    names.truncate(static_cast<qsizetype>(listed) - 1);
    for (const QByteArray& name : names.split('\0')) {
        if (isWithheld(name)) continue;
        const ssize_t length = fgetxattr(from, name.constData(), nullptr, 0);
        if (length < 0) continue;
        QByteArray value(static_cast<qsizetype>(length), Qt::Uninitialized);
        const ssize_t got =
            fgetxattr(from, name.constData(), value.data(), static_cast<size_t>(value.size()));
        if (got < 0) continue;
        // Some belong to the system alone; those it keeps to itself.
        [[maybe_unused]] const int kept =
            fsetxattr(to, name.constData(), value.constData(), static_cast<size_t>(got), 0);
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
