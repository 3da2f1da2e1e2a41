// The runner: the open file, or a command of the person's own, in a shell session of the project.

#include "workspace/Workspace.h"

#include "files/interpreter.h"
#include "platform/observe.h"
#include "platform/textEnds.h"

namespace orvo {
namespace {

constexpr qsizetype titleCharacters = 50;

QString shell() {
    return QStringLiteral("shell");
}

}  // namespace

const QString& Workspace::runnerCommand() const {
    return m_runnerCommand;
}

void Workspace::setRunnerCommand(const QString& command) {
    if (assign(m_runnerCommand, command)) Q_EMIT runnerCommandChanged();
}

void Workspace::runFile() {
    // Copies: saving may ask, and while it does another file or project can be opened.
    const std::optional<FilePath> selected = m_files.selectedFile();
    if (!m_folder || !selected) return;
    const FilePath folder = *m_folder;
    const FilePath& file = *selected;
    if (m_files.fileIsDirty() && !m_files.saveFile()) return;
    const std::optional<QString> command =
        interpreterCommand(file, m_assistants.executablePath(QStringLiteral("python3")));
    if (!command) {
        notify(tr("Use a custom command for this file type."));
        return;
    }
    startSession(shell(), tr("Run · %1").arg(file.displayName()), *command, folder);
}

void Workspace::runCommand() {
    if (!m_folder) {
        chooseFolder();
        return;
    }
    const QString command = m_runnerCommand.trimmed();
    if (command.isEmpty()) return;
    startSession(shell(), firstCharacters(command, titleCharacters), command, *m_folder);
}

}  // namespace orvo
