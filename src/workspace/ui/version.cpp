#include "workspace/ui/version.h"

namespace orvo {

QString versionText() {
    const QString version = QStringLiteral(ORVO_VERSION);
    return version.isEmpty() ? QStringLiteral("Development") : version;
}

}  // namespace orvo
