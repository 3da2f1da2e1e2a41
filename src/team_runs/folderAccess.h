#pragma once

#include "platform/FileDescriptor.h"
#include "platform/FilePath.h"

#include <tl/expected.hpp>

#include <cstddef>

#include <sys/stat.h>

namespace orvo {

/// A value, or the number of the system error.
template <class T>
using SystemResult = tl::expected<T, int>;

/// Access to what lies beneath an open folder. Paths are relative, "/"-separated, without "." and "..", and
/// may be longer than PATH_MAX. No symbolic link is ever followed: one on the way gives ELOOP.

/// A folder by its own path; here links are followed, since the person named it. ENOTDIR for anything else.
SystemResult<FileDescriptor> openRoot(const FilePath& folder);
/// The folder at `path`; the root itself (a second descriptor of it) for an empty path.
SystemResult<FileDescriptor> openFolderBeneath(int root, const QByteArray& path);
/// The same, creating what is missing (mode 0777 less the umask). `known` bytes of `path` name a folder that
/// was there a moment ago: with many new folders, looking for the deepest old one would cost more than making
/// them.
SystemResult<FileDescriptor> makeFolderBeneath(int root, const QByteArray& path, qsizetype known = 0);

/// A regular file of `folder`, for reading. A link gives ELOOP; a folder, pipe, socket or device gives EINVAL
/// and is not opened. `status` describes what was opened.
SystemResult<FileDescriptor> openRegularFile(int folder, const char* name, struct stat& status);

/// "a/b" of "a/b/c"; empty for a name without a folder.
QByteArray parentPath(const QByteArray& path);
QByteArray fileName(const QByteArray& path);
/// The same without a copy: within `path`.
const char* fileNameIn(const QByteArray& path);

/// Permission bits as they are compared and stored.
inline int permissionsOf(const struct stat& status) {
    return static_cast<int>(status.st_mode & 07777);
}

/// Reads until `size` bytes or the end; the number of bytes read. Interruptions are gone on from.
SystemResult<size_t> readFully(int descriptor, char* buffer, size_t size);
/// Writes all of it.
SystemResult<void> writeFully(int descriptor, const char* data, size_t size);

/// Keeps the descriptor of the folder used last, for work that goes through sorted paths.
class FolderCursor {
public:
    enum class Missing { Fail, Create };

    /// `root` outlives the cursor.
    FolderCursor(int root, Missing missing) : m_root(root), m_missing(missing) {}

    /// The folder that holds the file at `path`; valid until the next call.
    SystemResult<int> folderOf(const QByteArray& path);

private:
    /// How many bytes of `path` name a folder on the way to the one used last, or that one.
    qsizetype sharedWith(const QByteArray& path) const;

    int m_root;
    Missing m_missing;
    QByteArray m_path;
    FileDescriptor m_folder;
};

}  // namespace orvo
