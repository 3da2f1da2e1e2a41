#pragma once

#include "files/ProjectFiles.h"

namespace orvo {

/// The items of `folder` but the hidden ones: folders first, each group in the order of the person's language
/// with numbers by value and without regard to case.
Result<QList<FileEntry>> listEntries(const FilePath& folder);

}  // namespace orvo
