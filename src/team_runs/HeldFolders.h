#pragma once

#include "team_runs/folderAccess.h"

#include <QList>

#include <map>

namespace orvo::RunFiles {

/// The folders of a project that an apply works in, held open from the check to the last step, so that a link
/// put in a folder's place meanwhile leads nowhere.
class HeldFolders {
public:
    /// `root` outlives this object.
    explicit HeldFolders(int root) : m_root(root) {}

    /// The folder at `path`, opened at the first call; later calls give the same folder or ESTALE. Valid
    /// until two more folders have been asked for.
    SystemResult<int> open(const QByteArray& path);

    /// The same, but only if the path still leads to the folder that was opened: ESTALE or ELOOP otherwise.
    SystemResult<int> confirmed(const QByteArray& path);

    /// Opens the folder at `path`, creating what is missing; `created` gets the paths of new folders, outer
    /// ones first.
    SystemResult<int> make(const QByteArray& path, QList<QByteArray>& created);

    /// Removes an empty folder that `make` created.
    SystemResult<void> unmake(const QByteArray& path);

    /// Writes all folders' entries to the disk.
    SystemResult<void> synchronise();

private:
    struct Held {
        // Closed when too many are open; the numbers below then tell whether it is the same folder again.
        FileDescriptor descriptor;
        dev_t device = 0;
        ino_t inode = 0;
        quint64 lastUse = 0;
    };

    SystemResult<int> hold(const QByteArray& path, FileDescriptor folder);
    void closeOldest();

    std::map<QByteArray, Held> m_folders;
    int m_root;
    size_t m_open = 0;
    quint64 m_uses = 0;
};

/// The longest beginning of `path` that is a folder now; empty for the root itself.
SystemResult<QByteArray> deepestFolder(int root, QByteArray path);

}  // namespace orvo::RunFiles
