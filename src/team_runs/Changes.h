#pragma once

#include "platform/FilePath.h"
#include "platform/Result.h"
#include "team_runs/FileChange.h"

#include <functional>
#include <stop_token>

namespace orvo::RunFiles {

/// How many files of how many have been examined.
using ReadingProgress = std::function<void(int files, int allFiles)>;

/// What differs between a run's baseline and one of its copies, in byte order of the paths. Reads no more
/// than it must: files of equal size are compared byte by byte, and only what differs is hashed. Blocks; uses
/// a few threads of its own. Any thread. `progress`, which may be empty, is called now and then, from
/// the calling thread.
Result<QList<FileChange>> changes(const FilePath& baseline, const FilePath& result,
                                  const std::stop_token& stop = {}, const ReadingProgress& progress = {});

}  // namespace orvo::RunFiles
