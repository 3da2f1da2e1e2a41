#pragma once

#include "platform/FilePath.h"
#include "platform/Result.h"

namespace orvo::ExampleProject {

/// Copies each top-level entry of `source` to `destination` (created when missing) unless something of its
/// name is there already, so that a person's edits survive an update and new samples still arrive. A copy
/// that fails leaves nothing half-made and is the error. Gives `destination`.
Result<FilePath> prepare(const FilePath& source, const FilePath& destination);

/// Where the samples are installed, told from the folder of the running program.
FilePath installedSource(const FilePath& programFolder);

}  // namespace orvo::ExampleProject
