#pragma once

#include "platform/FilePath.h"
#include "platform/Result.h"
#include "team_runs/FileChange.h"

namespace orvo::RunFiles {

/// Takes reviewed changes over into the project, all of them or none.
///
/// Everything is checked against the review first, in the project and in the copy. Then the originals are
/// copied to `backup` (created when there is one to keep), the new contents wait beside their places under
/// temporary names, and only then files change, each by one rename. A failure puts back what was written.
/// `backup` with ".journal" appended exists while this goes on; see ApplyJournal.h.
///
/// Only one apply at a time works on a project. Blocks; any thread.
Result<void> apply(const QList<FileChange>& changes, const FilePath& project, const FilePath& result,
                   const FilePath& backup);

}  // namespace orvo::RunFiles
