#include "team_runs/changePath.h"

#include "team_runs/runError.h"

#include <QCoreApplication>
#include <QList>

namespace orvo::RunFiles {

Result<QByteArray> checkedPath(const QByteArray& path) {
    QByteArray plain;
    bool valid = !path.startsWith('/') && !path.contains('\0');
    for (const QByteArray& part : path.split('/')) {
        if (part == "..") valid = false;
        if (part.isEmpty() || part == ".") continue;
        if (!plain.isEmpty()) plain += '/';
        plain += part;
    }
    if (!valid || plain.isEmpty()) {
        return refusal(QCoreApplication::translate("RunFiles", "Invalid change path."));
    }
    return plain;
}

}  // namespace orvo::RunFiles
