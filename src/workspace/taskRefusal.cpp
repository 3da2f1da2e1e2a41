#include "workspace/taskRefusal.h"

#include "terminal/core/launch.h"

#include <QCoreApplication>

namespace orvo {
namespace {

// What a session puts before its command, rounded up: a task that is let through can be started.
constexpr std::size_t roomBeforeCommand = 256;

QString tr(const char* text) {
    return QCoreApplication::translate("orvo::Workspace", text);
}

}  // namespace

std::optional<QString> taskRefusal(const Provider& provider, const QString& task, const QString& command) {
    if (auto error = provider.templateError()) return error;
    if (task.isEmpty()) return std::nullopt;
    if (!provider.receivesTasks()) {
        return tr("Add {prompt} to %1’s launch command to receive tasks.").arg(provider.shownName());
    }
    if (task.contains(QChar::Null)) return tr("This task holds a character that no command can carry.");
    if (!fitsOneArgument(std::string(roomBeforeCommand, ' ') + command.toStdString())) {
        return tr("This task is too long to start %1 with. Put the details into a file of the project.")
            .arg(provider.shownName());
    }
    return std::nullopt;
}

}  // namespace orvo
