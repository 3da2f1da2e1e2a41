// From a task to the sessions that work on it; signing in and resuming.

#include "workspace/Workspace.h"

#include "platform/observe.h"
#include "platform/textEnds.h"
#include "workspace/taskRefusal.h"

namespace orvo {
namespace {

constexpr int titleCharacters = 52;
const QString shellID = QStringLiteral("shell");

}  // namespace

void Workspace::setTeamRuns(TeamRunHandover* teamRuns) {
    m_teamRuns = teamRuns;
    Q_EMIT teamRunsAttached();
    refreshPreparingRun();
}

bool Workspace::hasTeamRuns() const {
    return m_teamRuns != nullptr;
}

void Workspace::refreshPreparingRun() {
    if (assign(m_preparingRun, m_teamRuns && m_teamRuns->preparingRun())) Q_EMIT preparingRunChanged();
}

QString Workspace::preparationStatus() const {
    return m_teamRuns ? m_teamRuns->preparationStatus() : QString();
}

void Workspace::refreshPreparationStatus() {
    Q_EMIT preparationStatusChanged();
}

void Workspace::cancelPreparation() {
    if (m_teamRuns) m_teamRuns->cancelPreparation();
    refreshPreparingRun();
}

/// Without a project the person is asked for one; false when there is none even so.
std::optional<FilePath> Workspace::ensureFolder() {
    if (!m_folder) chooseFolder();
    return m_folder;
}

QList<Provider> Workspace::taskTargets() const {
    QList<Provider> targets;
    for (const Provider& provider : m_assistants.providers()) {
        if (provider.id != shellID && m_selectedProviders.contains(provider.id) &&
            m_assistants.isReady(provider)) {
            targets.append(provider);
        }
    }
    return targets;
}

void Workspace::dispatchPrompt() {
    const QString task = m_prompt.trimmed();
    if (task.isEmpty()) return;
    const std::optional<FilePath> folder = ensureFolder();
    if (!folder) return;
    const QList<Provider> targets = taskTargets();
    if (targets.isEmpty()) {
        notify(tr("Select at least one installed assistant."));
        return;
    }
    for (const Provider& target : targets) {
        if (const auto refusal = taskRefusal(target, task, target.command(task))) {
            notify(*refusal);
            return;
        }
    }
    if (m_separateCopies) {
        if (!m_teamRuns) {
            notify(tr("Separate copies are not available yet. Choose Shared folder to run this task."));
            return;
        }
        m_teamRuns->startTeamRun(task, targets, *folder);
        refreshPreparingRun();
        return;
    }
    for (const Provider& target : targets)
        launch(target, task);
    setPrompt(QString());
    notify(targets.size() == 1 ? tr("Task sent to 1 assistant.")
                               : tr("Task sent to %1 assistants.").arg(targets.size()));
}

void Workspace::launch(const Provider& provider, const QString& prompt) {
    const std::optional<FilePath> folder = ensureFolder();
    if (!folder) return;
    if (!m_assistants.isReady(provider)) {
        editConnector(provider);
        return;
    }
    const QString command = provider.command(prompt);
    if (const auto refusal = taskRefusal(provider, prompt, command)) {
        notify(*refusal);
        return;
    }
    const QString title = prompt.isEmpty() ? tr("%1 session").arg(provider.shownName())
                                           : firstCharacters(prompt, titleCharacters);
    startSession(provider.id, title, command, *folder);
}

void Workspace::signIn(const Provider& provider) {
    const FilePath executable = m_assistants.available().value(provider.id);
    if (executable.isEmpty()) {
        editConnector(provider);
        return;
    }
    QString arguments;
    if (provider.id == QLatin1String("claude")) {
        arguments = QStringLiteral(" auth login");
    } else if (provider.id == QLatin1String("codex") || provider.id == QLatin1String("kimi")) {
        arguments = QStringLiteral(" login");
    } else {
        launch(provider, QString());
        return;
    }
    startSession(provider.id, tr("Sign in · %1").arg(provider.shownName()),
                 shellQuote(executable.display()) + arguments, m_folder.value_or(m_services.tools.home));
}

void Workspace::resume(const Provider& provider) {
    const FilePath executable = m_assistants.available().value(provider.id);
    if (executable.isEmpty()) return;
    const std::optional<FilePath> folder = ensureFolder();
    if (!folder) return;
    QString arguments;
    if (provider.id == QLatin1String("codex")) {
        arguments = QStringLiteral(" resume --last --sandbox workspace-write");
    } else if (provider.id == QLatin1String("claude") || provider.id == QLatin1String("kimi") ||
               provider.id == QLatin1String("antigravity")) {
        arguments = QStringLiteral(" --continue");
    } else {
        return;
    }
    startSession(provider.id, tr("Resume · %1").arg(provider.shownName()),
                 shellQuote(executable.display()) + arguments, *folder);
}

}  // namespace orvo
