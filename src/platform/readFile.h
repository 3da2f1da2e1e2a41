#pragma once

#include "platform/FilePath.h"
#include "platform/Result.h"

namespace orvo {

/// The whole content of a regular file. Links are followed; a pipe, device or folder is refused without being
/// opened for reading, so the call cannot hang. A file of more than `limit` bytes is an error (EFBIG).
Result<QByteArray> readFile(const FilePath& file, qsizetype limit);

/// The same for a descriptor, from its beginning.
Result<QByteArray> readFile(int descriptor, qsizetype limit);

}  // namespace orvo
