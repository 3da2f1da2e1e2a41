#pragma once

#include "platform/FilePath.h"

#include <QByteArray>

namespace orvo {

/// Where programs are looked for: the person's home folder and the inherited PATH.
/// A value, so that tests can look at a home of their own.
struct ToolEnvironment {
    FilePath home;
    /// PATH as inherited; empty when absent.
    QByteArray path;

    static ToolEnvironment fromProcess();
};

}  // namespace orvo
