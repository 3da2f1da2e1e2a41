#pragma once

#include "platform/FilePath.h"
#include "platform/Result.h"

#include <QList>

namespace orvo {

/// Names of everything in `folder` as the system keeps them, hidden ones included, in no order.
Result<QList<QByteArray>> listFolder(const FilePath& folder);

}  // namespace orvo
