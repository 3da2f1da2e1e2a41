#pragma once

#include "team_runs/folderAccess.h"

namespace orvo::RunFiles {

/// Copies all of `from` (from its beginning) to `to` and gives the SHA-256 of what was copied.
SystemResult<QByteArray> copyContent(int from, int to);

/// Moves a file to a name that must not exist yet (EEXIST), in one step or by a second link.
SystemResult<void> moveExclusively(int fromFolder, const QByteArray& from, int toFolder,
                                   const QByteArray& to);

/// Exchanges two files of one folder. EINVAL or ENOSYS where the file system cannot.
SystemResult<void> exchange(int folder, const QByteArray& one, const QByteArray& other);

/// A name of ours for a file that waits or is put aside; short, so that it fits beside a name of 255 bytes.
QByteArray temporaryName();

}  // namespace orvo::RunFiles
