#pragma once

#include "platform/FilePath.h"
#include "platform/Result.h"
#include "team_runs/FileChange.h"

namespace orvo::ctl {

/// The change as a unified diff between the baseline and the copy, made by the system's diff program. Files
/// of two megabytes and more, and binary ones, are named only. Blocks.
Result<QByteArray> unifiedDiff(const FileChange& change, const FilePath& baseline, const FilePath& result);

/// The same for a terminal: no byte of it can move the cursor or start a sequence, and lines are coloured by
/// their first character when that is wanted.
enum class DiffColor { None, ByLine };
QByteArray shownOnTerminal(const QByteArray& diff, DiffColor color);

}  // namespace orvo::ctl
