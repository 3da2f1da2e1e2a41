#pragma once

#include "platform/FilePath.h"

#include <optional>

namespace orvo {

/// The shell command that runs `file` with the interpreter of its extension, in whatever case that is
/// written; nothing for other files. `python3` is where Python was found; without it the shell looks again.
std::optional<QString> interpreterCommand(const FilePath& file, const std::optional<FilePath>& python3);

}  // namespace orvo
