#include "platform/ToolEnvironment.h"

#include <QDir>

namespace orvo {

ToolEnvironment ToolEnvironment::fromProcess() {
    ToolEnvironment environment = {.home = FilePath(QFile::encodeName(QDir::homePath())),
                                   .path = qgetenv("PATH")};
    if (qEnvironmentVariableIsSet("ORVO_TOOL_FOLDERS"))
        environment.systemFolders = qgetenv("ORVO_TOOL_FOLDERS");
    return environment;
}

}  // namespace orvo
