#pragma once

#include "platform/FileDescriptor.h"
#include "platform/FilePath.h"
#include "platform/Result.h"

#include <QList>

namespace orvo {

/// The folder of a run that is being prepared. A file in it, locked by this process, tells other processes
/// that it must stay; without `keep()` it stays marked as abandoned when this object, or the process, is
/// gone.
class RunFolder {
public:
    /// Name of the marking file.
    static constexpr char marker[] = "preparing";

    /// A new folder with a fresh name in `storage`, which is created when missing.
    static Result<RunFolder> create(const FilePath& storage);

    const FilePath& path() const { return m_path; }

    /// The run is recorded from now on; its folder is never removed any more.
    void keep();

    /// Folders that processes which are gone left half prepared.
    static QList<FilePath> abandonedIn(const FilePath& storage);

private:
    RunFolder(FilePath path, FileDescriptor lock) : m_path(std::move(path)), m_lock(std::move(lock)) {}

    FilePath m_path;
    FileDescriptor m_lock;
};

}  // namespace orvo
