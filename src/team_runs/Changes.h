#pragma once

#include "platform/FilePath.h"
#include "platform/Result.h"
#include "team_runs/FileChange.h"

#include <stop_token>

namespace orvo::RunFiles {

/// What differs between a run's baseline and one of its copies, in byte order of the paths. Reads no more
/// than it must: files of equal size are compared byte by byte, and only what differs is hashed. Blocks; uses
/// a few threads of its own. Any thread.
Result<QList<FileChange>> changes(const FilePath& baseline, const FilePath& result,
                                  const std::stop_token& stop = {});

}  // namespace orvo::RunFiles
