#include "team_runs/folderAccess.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <climits>

#include <fcntl.h>
#include <linux/openat2.h>
#include <sys/syscall.h>

namespace orvo {
namespace {

constexpr int folderFlags = O_RDONLY | O_DIRECTORY | O_CLOEXEC;
// What one system call takes, its terminating zero included.
constexpr qsizetype longestPath = PATH_MAX - 1;

tl::unexpected<int> lastError() {
    return tl::unexpected<int>(errno);
}

bool isLink(int folder, const char* name) {
    struct stat status{};
    return fstatat(folder, name, &status, AT_SYMLINK_NOFOLLOW) == 0 && S_ISLNK(status.st_mode);
}

/// One name in `folder`. Never upward, as openat2 refuses it too.
SystemResult<FileDescriptor> openChild(int folder, const QByteArray& name) {
    if (name == "..") return tl::unexpected<int>(EXDEV);
    FileDescriptor child(openat(folder, name.constData(), folderFlags | O_NOFOLLOW));
    if (child.isOpen()) return child;
    const int code = errno;
    // The kernel says "not a directory" of a link here; callers tell the two apart.
    if (code == ENOTDIR && isLink(folder, name.constData())) return tl::unexpected<int>(ELOOP);
    return tl::unexpected<int>(code);
}

SystemResult<FileDescriptor> openByComponents(int folder, const QByteArray& path) {
    FileDescriptor current;
    for (const QByteArray& name : path.split('/')) {
        auto next = openChild(current.isOpen() ? current.number() : folder, name);
        if (!next) return next;
        current = std::move(*next);
    }
    return current;
}

/// A path that one system call takes.
SystemResult<FileDescriptor> openShortPath(int folder, const QByteArray& path) {
    // The plain call is cheaper.
    if (!path.contains('/')) return openChild(folder, path);
    static std::atomic<bool> supported{true};
    if (supported) {
        open_how how{};
        how.flags = folderFlags;
        how.resolve = RESOLVE_BENEATH | RESOLVE_NO_SYMLINKS;
        FileDescriptor opened(
            static_cast<int>(syscall(SYS_openat2, folder, path.constData(), &how, sizeof how)));
        if (opened.isOpen()) return opened;
        // EPERM: a sandbox that does not know the call yet.
        if (errno != ENOSYS && errno != EPERM) return lastError();
        supported = false;
    }
    return openByComponents(folder, path);
}

}  // namespace

SystemResult<FileDescriptor> openRoot(const FilePath& folder) {
    FileDescriptor root(open(folder.bytes().constData(), folderFlags));
    if (!root.isOpen()) return lastError();
    return root;
}

SystemResult<FileDescriptor> openFolderBeneath(int root, const QByteArray& path) {
    if (path.isEmpty()) {
        FileDescriptor same(fcntl(root, F_DUPFD_CLOEXEC, 0));
        if (!same.isOpen()) return lastError();
        return same;
    }
    FileDescriptor current;
    qsizetype from = 0;
    while (from < path.size()) {
        const int base = current.isOpen() ? current.number() : root;
        qsizetype to = path.size();
        if (to - from > longestPath) to = path.lastIndexOf('/', from + longestPath);
        if (to <= from) return tl::unexpected<int>(ENAMETOOLONG);
        auto next = openShortPath(base, path.mid(from, to - from));
        if (!next) return next;
        current = std::move(*next);
        from = to + 1;
    }
    return current;
}

SystemResult<FileDescriptor> makeFolderBeneath(int root, const QByteArray& path, qsizetype known) {
    auto folder = openFolderBeneath(root, path);
    if (folder || folder.error() != ENOENT) return folder;
    // From the deepest part that exists, downward: no recursion, however deep the path.
    qsizetype existing = known;
    if (existing > 0) folder = openFolderBeneath(root, path.left(existing));
    if (!folder && folder.error() == ENOENT) {
        existing = path.size();
        do {
            existing = std::max<qsizetype>(path.lastIndexOf('/', existing - 1), 0);
            folder = openFolderBeneath(root, path.left(existing));
        } while (!folder && folder.error() == ENOENT && existing > 0);
    }
    if (!folder) return folder;
    FileDescriptor current = std::move(*folder);
    for (const QByteArray& name : path.mid(existing == 0 ? 0 : existing + 1).split('/')) {
        if (mkdirat(current.number(), name.constData(), 0777) != 0 && errno != EEXIST) return lastError();
        auto next = openShortPath(current.number(), name);
        if (!next) return next;
        current = std::move(*next);
    }
    return current;
}

SystemResult<FileDescriptor> openRegularFile(int folder, const char* name, struct stat& status) {
    // Looked at first, because opening a device or a pipe can already have an effect.
    if (fstatat(folder, name, &status, AT_SYMLINK_NOFOLLOW) != 0) return lastError();
    if (S_ISLNK(status.st_mode)) return tl::unexpected<int>(ELOOP);
    if (!S_ISREG(status.st_mode)) return tl::unexpected<int>(EINVAL);
    FileDescriptor file(openat(folder, name, O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    if (!file.isOpen()) return lastError();
    // Looked at again, because something else may have taken its place in between.
    if (fstat(file.number(), &status) != 0) return lastError();
    if (!S_ISREG(status.st_mode)) return tl::unexpected<int>(EINVAL);
    return file;
}

QByteArray parentPath(const QByteArray& path) {
    return path.left(std::max<qsizetype>(path.lastIndexOf('/'), 0));
}

QByteArray fileName(const QByteArray& path) {
    return path.mid(path.lastIndexOf('/') + 1);
}

const char* fileNameIn(const QByteArray& path) {
    return path.constData() + path.lastIndexOf('/') + 1;
}

SystemResult<size_t> readFully(int descriptor, char* buffer, size_t size) {
    size_t filled = 0;
    while (filled < size) {
        const ssize_t count = read(descriptor, buffer + filled, size - filled);
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) return lastError();
        if (count == 0) break;
        filled += static_cast<size_t>(count);
    }
    return filled;
}

SystemResult<void> writeFully(int descriptor, const char* data, size_t size) {
    while (size > 0) {
        const ssize_t count = write(descriptor, data, size);
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) return lastError();
        data += count;
        size -= static_cast<size_t>(count);
    }
    return {};
}

qsizetype FolderCursor::sharedWith(const QByteArray& path) const {
    if (!m_folder.isOpen()) return 0;
    const auto differs = std::mismatch(path.begin(), path.end(), m_path.begin(), m_path.end());
    const auto length = differs.first - path.begin();
    // Whole names only.
    const bool whole = differs.second == m_path.end() && (length == path.size() || path.at(length) == '/');
    return whole ? length : std::max<qsizetype>(path.left(length).lastIndexOf('/'), 0);
}

SystemResult<int> FolderCursor::folderOf(const QByteArray& path) {
    const QByteArrayView parentView(path.constData(), std::max<qsizetype>(path.lastIndexOf('/'), 0));
    if (parentView.isEmpty()) return m_root;
    if (m_folder.isOpen() && parentView == m_path) return m_folder.number();
    QByteArray parent = parentView.toByteArray();
    auto folder = m_missing == Missing::Create ? makeFolderBeneath(m_root, parent, sharedWith(parent))
                                               : openFolderBeneath(m_root, parent);
    if (!folder) return tl::unexpected<int>(folder.error());
    m_folder = std::move(*folder);
    m_path = std::move(parent);
    return m_folder.number();
}

}  // namespace orvo
