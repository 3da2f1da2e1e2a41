#pragma once

#include "platform/FilePath.h"
#include "platform/Result.h"

namespace orvo {

/// The bytes of a planner's answer: a regular file, not reached through a link, of at most 60,000 bytes.
Result<QByteArray> readPlanFile(const FilePath& file);

}  // namespace orvo
