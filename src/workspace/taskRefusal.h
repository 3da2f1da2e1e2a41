#pragma once

#include "assistants/Provider.h"

#include <optional>

namespace orvo {

/// Why `provider` cannot work on `task` with `command`, the command line made from both: the sentence for the
/// person, or nothing. Without a task only the launch command itself can be wrong.
std::optional<QString> taskRefusal(const Provider& provider, const QString& task, const QString& command);

}  // namespace orvo
