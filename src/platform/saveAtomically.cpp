#include "platform/saveAtomically.h"

#include "platform/FileDescriptor.h"
#include "platform/extendedAttributes.h"
#include "platform/listFolder.h"
#include "platform/systemError.h"

#include <QList>
#include <QRandomGenerator>

#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <ctime>
#include <memory>
#include <optional>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

namespace orvo {
namespace {

// Short, so that there is room for it beside a name of 255 bytes, and hidden from listings.
constexpr char temporaryPrefix[] = ".orvo-";
constexpr char temporarySuffix[] = ".tmp";
constexpr int temporaryAttempts = 16;

/// The file that a link finally points to.
Result<FilePath> resolved(const FilePath& file) {
    struct stat status{};
    const char* const path = file.bytes().constData();
    if (lstat(path, &status) != 0 || !S_ISLNK(status.st_mode)) return file;
    const std::unique_ptr<char, decltype(&std::free)> target(realpath(path, nullptr), &std::free);
    if (!target) return systemFailure(errno, file);
    return FilePath(QByteArray(target.get()));
}

/// What the file that is to be replaced looks like. Absent: there is none, or a link to be replaced.
struct Former {
    struct stat status{};
    // Only for reading attributes; may be closed when the file is not readable.
    FileDescriptor descriptor;
};

/// 0, or why the file at `name` must not be replaced.
int examine(int folder, const char* name, std::optional<Former>& former) {
    struct stat status{};
    if (fstatat(folder, name, &status, AT_SYMLINK_NOFOLLOW) != 0) return errno == ENOENT ? 0 : errno;
    if (S_ISLNK(status.st_mode)) return 0;
    if (S_ISDIR(status.st_mode)) return EISDIR;
    // A device or pipe is no file of ours to put something else in its place.
    if (!S_ISREG(status.st_mode)) return EPERM;
    if (faccessat(folder, name, W_OK, AT_EACCESS) != 0) return errno;
    former.emplace();
    former->status = status;
    former->descriptor =
        FileDescriptor(openat(folder, name, O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    return 0;
}

void restoreLooks(const Former& former, int temporary) {
    mode_t mode = former.status.st_mode & 07777;
    struct stat created{};
    const bool sameOwner = fstat(temporary, &created) == 0 && created.st_uid == former.status.st_uid &&
                           created.st_gid == former.status.st_gid;
    if (!sameOwner && fchown(temporary, former.status.st_uid, former.status.st_gid) != 0) {
        // Somebody else's file: what its owner's identity and group allowed must not pass to ours.
        mode &= ~static_cast<mode_t>(S_ISUID | S_ISGID);
        if (fchown(temporary, static_cast<uid_t>(-1), former.status.st_gid) != 0) {
            mode = (mode & ~static_cast<mode_t>(S_IRWXG)) | ((mode & S_IRWXO) << 3);
        }
    }
    // File systems without permissions refuse; the file is then as it can be there.
    [[maybe_unused]] const int kept = fchmod(temporary, mode);
    if (former.descriptor.isOpen()) copyAttributes(former.descriptor.number(), temporary);
}

int writeAll(int descriptor, QByteArrayView content) {
    while (!content.isEmpty()) {
        const ssize_t written = write(descriptor, content.data(), static_cast<size_t>(content.size()));
        if (written < 0 && errno == EINTR) continue;
        if (written < 0) return errno;
        content = content.sliced(static_cast<qsizetype>(written));
    }
    return 0;
}

/// Creates, fills and synchronises the temporary. 0, or why not; `name` is empty while there is none.
int writeTemporary(int folder, QByteArrayView content, mode_t mode, const std::optional<Former>& former,
                   QByteArray& name) {
    FileDescriptor temporary;
    for (int attempt = 0; !temporary.isOpen(); ++attempt) {
        const QByteArray candidate = temporaryPrefix +
                                     QByteArray::number(QRandomGenerator::system()->generate64(), 16) +
                                     temporarySuffix;
        temporary = FileDescriptor(openat(folder, candidate.constData(),
                                          O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, mode));
        if (temporary.isOpen()) {
            name = candidate;
            // For as long as it is being filled; see removeStaleTemporaries.
            [[maybe_unused]] const int locked = flock(temporary.number(), LOCK_EX | LOCK_NB);
        } else if (errno != EEXIST || attempt == temporaryAttempts) {
            return errno;
        }
    }
    if (const int code = writeAll(temporary.number(), content); code != 0) return code;
    if (former) restoreLooks(*former, temporary.number());
    return fsync(temporary.number()) == 0 ? 0 : errno;
}

/// Opened for reading where allowed, because only then can it be synchronised.
FileDescriptor openFolder(const FilePath& folder, bool& canSynchronise) {
    const char* const path = folder.bytes().constData();
    FileDescriptor descriptor(open(path, O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    canSynchronise = descriptor.isOpen();
    if (!descriptor.isOpen() && errno == EACCES) {
        descriptor = FileDescriptor(open(path, O_PATH | O_DIRECTORY | O_CLOEXEC));
    }
    return descriptor;
}

}  // namespace

Result<void> saveAtomically(const FilePath& path, QByteArrayView content, SaveOptions options) {
    FilePath file = path;
    if (options.link == SaveOptions::Link::Follow) {
        Result<FilePath> target = resolved(path);
        if (!target) return tl::unexpected<Error>(std::move(target.error()));
        file = *target;
    }
    const QByteArray name = file.nameBytes();
    bool canSynchronise = false;
    const FileDescriptor folder = openFolder(file.parent(), canSynchronise);
    if (!folder.isOpen()) return systemFailure(errno, path);

    std::optional<Former> former;
    if (const int code = examine(folder.number(), name.constData(), former); code != 0) {
        return systemFailure(code, path);
    }
    // A file that exists may be more private than a new one would be; its temporary starts closed.
    const mode_t mode = !former && options.newFile == SaveOptions::NewFile::AsUserWants ? 0666 : 0600;
    QByteArray temporary;
    int code = writeTemporary(folder.number(), content, mode, former, temporary);
    if (code == 0 &&
        renameat(folder.number(), temporary.constData(), folder.number(), name.constData()) != 0) {
        code = errno;
    }
    if (code != 0) {
        if (!temporary.isEmpty()) unlinkat(folder.number(), temporary.constData(), 0);
        return systemFailure(code, path);
    }
    // EINVAL: a file system that has no way to synchronise folders.
    if (canSynchronise && fsync(folder.number()) != 0 && errno != EINVAL) return systemFailure(errno, path);
    return {};
}

void removeStaleTemporaries(const FilePath& folder) {
    constexpr std::int64_t staleAfter = 3600;
    const Result<QList<QByteArray>> names = listFolder(folder);
    if (!names) return;
    const std::int64_t now = time(nullptr);
    for (const QByteArray& name : *names) {
        if (!name.startsWith(temporaryPrefix) || !name.endsWith(temporarySuffix)) continue;
        const QByteArray path = folder.child(name).bytes();
        const FileDescriptor temporary(
            open(path.constData(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
        struct stat status{};
        if (!temporary.isOpen() || fstat(temporary.number(), &status) != 0 || !S_ISREG(status.st_mode))
            continue;
        // The clock may have been set since, either way; whoever is still writing holds the lock.
        if (std::abs(now - status.st_mtime) < staleAfter) continue;
        if (flock(temporary.number(), LOCK_EX | LOCK_NB) == 0 || errno != EWOULDBLOCK)
            unlink(path.constData());
    }
}

}  // namespace orvo
