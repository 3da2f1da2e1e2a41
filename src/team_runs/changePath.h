#pragma once

#include "platform/Result.h"

#include <QByteArray>

namespace orvo::RunFiles {

/// The relative path of a change in its plain form (no empty parts, no "."), or the refusal of one that is
/// empty, absolute, leads upward or cannot be a file name at all. It says nothing about links: the open calls
/// do.
Result<QByteArray> checkedPath(const QByteArray& path);

}  // namespace orvo::RunFiles
