#pragma once

#include "files/ProjectFiles.h"

namespace orvo {

/// The items of `folder` but the hidden ones: folders first, each group in the order of the person's language
/// with numbers by value and without regard to case.
Result<QList<FileEntry>> listEntries(const FilePath& folder);

/// The same in the order that the system gives, and the order for it. The first order of a run loads the
/// language's rules: two megabytes.
Result<QList<FileEntry>> readEntries(const FilePath& folder);
void sortEntries(QList<FileEntry>& entries);

}  // namespace orvo
