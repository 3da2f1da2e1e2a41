#pragma once

#include "platform/FilePath.h"

#include <QByteArray>

namespace orvo {

/// From now on a fault that nobody handles (SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT, std::terminate) leaves
/// a plain report in `folder` before it ends the process as it would have: the version, the signal and where
/// the program was, no text of the person's. The folder need not exist. For the process, once; children that
/// are executed do not inherit it.
void installCrashHandler(const FilePath& folder, const QByteArray& version);

}  // namespace orvo
