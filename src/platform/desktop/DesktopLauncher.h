#pragma once

#include "platform/Launcher.h"

#include <QCoreApplication>

namespace orvo {

/// Opens folders and web addresses with the programs the desktop has for them.
class DesktopLauncher final : public Launcher {
    Q_DECLARE_TR_FUNCTIONS(DesktopLauncher)

public:
    Result<void> openFolder(const FilePath& folder) override;
    /// Addresses of the web only (http, https, with a host): others could start any program.
    Result<void> openAddress(const QUrl& address) override;
};

}  // namespace orvo
