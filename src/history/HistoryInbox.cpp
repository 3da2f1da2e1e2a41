#include "history/HistoryInbox.h"

#include "platform/AppFolders.h"
#include "platform/FileDescriptor.h"
#include "platform/readFile.h"
#include "platform/saveAtomically.h"
#include "platform/systemError.h"

#include <QJsonDocument>
#include <QJsonObject>

#include <cerrno>
#include <chrono>
#include <thread>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

namespace orvo {
namespace {

using namespace std::chrono_literals;

constexpr auto lockLimit = 5s;
constexpr auto lockPause = 10ms;
// Far beyond what we let it grow to; a larger file is not ours and would only fill the memory.
constexpr qsizetype maximumFile = 4 * HistoryInbox::defaultCapacity;
// As many as history holds, with the one that is added.
constexpr qsizetype keptWhenFull = 49;

struct Lines {
    QList<HistoryEntry> entries;
    bool someDamaged = false;
};

Lines decodeLines(const QByteArray& content) {
    Lines lines;
    for (const QByteArray& line : content.split('\n')) {
        if (line.isEmpty()) continue;
        if (const auto entry = historyEntryFromJson(QJsonDocument::fromJson(line).object())) {
            lines.entries.append(*entry);
        } else {
            lines.someDamaged = true;
        }
    }
    return lines;
}

/// The file at `path`, opened and locked. It is still the one at that place: a full inbox is replaced as a
/// whole.
Result<FileDescriptor> openLocked(const FilePath& path, int flags, std::chrono::milliseconds patience) {
    const auto deadline = std::chrono::steady_clock::now() + patience;
    while (true) {
        FileDescriptor file(
            open(path.bytes().constData(), flags | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC, 0600));
        if (!file.isOpen()) return systemFailure(errno, path);
        struct stat opened{};
        struct stat present{};
        if (fstat(file.number(), &opened) != 0) return systemFailure(errno);
        if (!S_ISREG(opened.st_mode)) return systemFailure(EINVAL);
        if (flock(file.number(), LOCK_EX | LOCK_NB) == 0) {
            if (lstat(path.bytes().constData(), &present) == 0 && present.st_ino == opened.st_ino &&
                present.st_dev == opened.st_dev) {
                return file;
            }
        } else if (errno != EWOULDBLOCK && errno != EINTR) {
            return systemFailure(errno);
        }
        if (std::chrono::steady_clock::now() >= deadline) return systemFailure(EWOULDBLOCK);
        std::this_thread::sleep_for(lockPause);
    }
}

/// Appends `line` whole or not at all.
Result<void> appendLine(const FileDescriptor& file, QByteArray line) {
    const off_t end = lseek(file.number(), 0, SEEK_END);
    if (end < 0) return systemFailure(errno);
    // A process that was killed half-way left the beginning of a line; it must not swallow ours.
    char last = '\n';
    if (end > 0 && pread(file.number(), &last, 1, end - 1) == 1 && last != '\n') line.prepend('\n');
    for (qsizetype written = 0; written < line.size();) {
        const ssize_t count =
            write(file.number(), line.constData() + written, static_cast<size_t>(line.size() - written));
        if (count >= 0) {
            written += static_cast<qsizetype>(count);
        } else if (errno != EINTR) {
            const int code = errno;
            [[maybe_unused]] const int undone = ftruncate(file.number(), end);
            return systemFailure(code);
        }
    }
    if (fsync(file.number()) != 0) return systemFailure(errno);
    return {};
}

}  // namespace

Result<void> HistoryInbox::append(const HistoryEntry& entry) const {
    if (Result<void> created = createPrivateFolder(m_file.parent()); !created) return created;
    const Result<FileDescriptor> file = openLocked(m_file, O_RDWR | O_CREAT, lockLimit);
    if (!file) return tl::unexpected<Error>(file.error());
    const QByteArray line = encodeEntry(entry) + '\n';
    struct stat status{};
    if (fstat(file->number(), &status) != 0) return systemFailure(errno);
    if (status.st_size + line.size() <= m_capacity) return appendLine(*file, line);

    const Result<QByteArray> content = readFile(file->number(), maximumFile);
    if (!content) return tl::unexpected<Error>(content.error());
    const QList<HistoryEntry> entries = decodeLines(*content).entries;
    QByteArray kept;
    for (const HistoryEntry& each : entries.last(qMin(entries.size(), keptWhenFull))) {
        kept += encodeEntry(each) + '\n';
    }
    return saveAtomically(m_file, kept + line);
}

QList<HistoryEntry> HistoryInbox::entries() const {
    const Result<QByteArray> content = readFile(m_file, maximumFile);
    return content ? decodeLines(*content).entries : QList<HistoryEntry>();
}

Result<void> HistoryInbox::take(const std::function<bool(const QList<HistoryEntry>&)>& keep) const {
    const Result<FileDescriptor> file = openLocked(m_file, O_RDWR, 0ms);
    if (!file) {
        if (file.error().code == ENOENT) return {};
        return tl::unexpected<Error>(file.error());
    }
    const Result<QByteArray> content = readFile(file->number(), maximumFile);
    if (!content) return tl::unexpected<Error>(content.error());
    if (content->isEmpty()) return {};
    const Lines lines = decodeLines(*content);
    if (lines.someDamaged) {
        if (Result<void> kept = saveAtomically(FilePath(m_file.bytes() + ".damaged"), *content); !kept)
            return kept;
    }
    if (!lines.entries.isEmpty() && !keep(lines.entries)) return {};
    if (ftruncate(file->number(), 0) != 0) return systemFailure(errno);
    return {};
}

}  // namespace orvo
