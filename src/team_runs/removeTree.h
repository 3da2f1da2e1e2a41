#pragma once

#include "platform/FilePath.h"
#include "team_runs/folderAccess.h"

#include <stop_token>

namespace orvo {

/// Removes `folder` with everything in it, however deep and whatever the names; no link is followed. Stopped,
/// it gives ECANCELED and can be gone on with later. The entry called `last`, directly in the folder, goes
/// last. Blocks.
SystemResult<void> removeTree(const FilePath& folder, const QByteArray& last = {},
                              const std::stop_token& stop = {});

}  // namespace orvo
