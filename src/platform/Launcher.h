#pragma once

#include "platform/FilePath.h"
#include "platform/Result.h"

#include <QUrl>

namespace orvo {

/// Hands folders and web addresses to the desktop's own programs.
class Launcher {
public:
    virtual ~Launcher() = default;

    virtual Result<void> openFolder(const FilePath& folder) = 0;
    virtual Result<void> openAddress(const QUrl& address) = 0;
};

}  // namespace orvo
