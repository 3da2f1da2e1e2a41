#include "platform/ToolEnvironment.h"

#include <QDir>

namespace orvo {

ToolEnvironment ToolEnvironment::fromProcess() {
    return {FilePath(QFile::encodeName(QDir::homePath())), qgetenv("PATH")};
}

}  // namespace orvo
