#pragma once

#include "platform/FilePath.h"

#include <QStringList>

#include <chrono>
#include <optional>
#include <stop_token>

namespace orvo {

/// What one helper command answered. A value.
struct ToolResult {
    /// Exit status; 128 plus the signal for a helper that a signal ended; -1 when it did not run.
    int code = -1;
    /// The first bytes of standard output and standard error as written, or why the helper did not run.
    QString output;
    /// It had to be stopped because its time was over.
    bool timedOut = false;

    bool operator==(const ToolResult&) const = default;
};

/// One short helper command.
struct ToolRequest {
    FilePath executable;
    QStringList arguments;
    /// Inherited when absent.
    std::optional<FilePath> directory;
    /// The home folder whose tool folders come first on the helper's PATH.
    FilePath home;
    std::chrono::milliseconds timeout;
};

/// Runs short helper commands. Stateless; blocks its caller, so never on the main thread.
namespace LocalTools {

/// Bytes kept of what a helper prints; the rest is read and dropped.
inline constexpr qsizetype maximumOutput = 256'000;

/// Runs a helper in a process group of its own, with standard input from the null device, until it ends, the
/// time is over or `stop` is requested. Then the group is asked to terminate, and killed 0.2 seconds later;
/// what the helper left running in its group is killed with it. Nothing is written to disk.
ToolResult run(const ToolRequest& request, const std::stop_token& stop = {});

}  // namespace LocalTools
}  // namespace orvo
