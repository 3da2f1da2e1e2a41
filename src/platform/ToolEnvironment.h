#pragma once

#include "platform/FilePath.h"

#include <QByteArray>

namespace orvo {

/// Where programs are looked for: the person's home folder, the system's folders and the inherited PATH.
/// A value, so that tests can look at a home of their own.
struct ToolEnvironment {
    FilePath home;
    /// PATH as inherited; empty when absent.
    QByteArray path = {};
    /// Where systems keep programs, searched whatever PATH says; in PATH's form. ORVO_TOOL_FOLDERS names
    /// others.
    QByteArray systemFolders = "/opt/homebrew/bin:/usr/local/bin:/usr/bin:/bin";

    static ToolEnvironment fromProcess();
};

}  // namespace orvo
