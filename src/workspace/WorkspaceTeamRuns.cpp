#include "workspace/WorkspaceTeamRuns.h"

#include "workspace/Workspace.h"

#include <algorithm>

namespace orvo {

WorkspaceTeamRuns::WorkspaceTeamRuns(Workspace& workspace, Clock& clock, const FilePath& runsFolder,
                                     QObject* parent)
    : QObject(parent), m_workspace(workspace), m_engine(*this, clock, runsFolder) {
    connect(&m_engine, &TeamRuns::preparingRunChanged, &workspace, &Workspace::refreshPreparingRun);
    connect(&m_engine, &TeamRuns::preparationProgressChanged, &workspace,
            &Workspace::refreshPreparationStatus);
    workspace.setTeamRuns(this);
}

WorkspaceTeamRuns::~WorkspaceTeamRuns() {
    m_workspace.setTeamRuns(nullptr);
}

void WorkspaceTeamRuns::startTeamRun(const QString& task, const QList<Provider>& providers,
                                     const FilePath& project) {
    m_engine.startTeamRun(task, providers, project);
}

void WorkspaceTeamRuns::cancelPreparation() {
    m_engine.cancelPreparation();
}

bool WorkspaceTeamRuns::preparingRun() const {
    return m_engine.preparingRun();
}

QString WorkspaceTeamRuns::preparationStatus() const {
    const RunFiles::CopyProgress& progress = m_engine.preparationProgress();
    if (progress.allFiles == 0) return {};
    constexpr double mega = 1e6;
    return tr("Copying %1 of %2 files, %3 of %4 MB")
        .arg(progress.files)
        .arg(progress.allFiles)
        .arg(static_cast<double>(progress.bytes) / mega, 0, 'f', 1)
        .arg(static_cast<double>(progress.allBytes) / mega, 0, 'f', 1);
}

QString WorkspaceTeamRuns::reasonToKeep(const TerminalSession& session) const {
    const auto& applying = m_engine.applyingRunID();
    const auto run = applying ? m_engine.run(*applying) : std::nullopt;
    const bool belongs = run && std::ranges::any_of(run->copies, [&](const RunCopy& copy) {
                             return copy.session == std::optional(session.id());
                         });
    return belongs ? tr("Files of this run are being applied. Close the session when that is done.")
                   : QString();
}

void WorkspaceTeamRuns::runSessionFinished(TerminalSession& session) {
    m_engine.runSessionFinished(session);
}

std::shared_ptr<TerminalSession> WorkspaceTeamRuns::startSession(
    const QString& provider, const QString& title, const QString& command, const FilePath& directory,
    std::function<void(TerminalSession&)> beforeStart) {
    return m_workspace.startSession(provider, title, command, directory, std::move(beforeStart));
}

std::shared_ptr<TerminalSession> WorkspaceTeamRuns::session(const QUuid& id) const {
    return m_workspace.session(id);
}

Provider WorkspaceTeamRuns::provider(const QString& id) const {
    return m_workspace.assistants().provider(id);
}

bool WorkspaceTeamRuns::isReady(const Provider& provider) const {
    return m_workspace.assistants().isReady(provider);
}

bool WorkspaceTeamRuns::confirmDiscard() {
    return m_workspace.files().confirmDiscard();
}

std::optional<QString> WorkspaceTeamRuns::historyOutput(const FilePath& directory) const {
    const auto& entries = m_workspace.history().entries();
    const auto found = std::ranges::find(entries, directory, &HistoryEntry::directory);
    if (found == entries.end()) return std::nullopt;
    return found->output;
}

void WorkspaceTeamRuns::clearPromptIfStill(const QString& task) {
    if (m_workspace.prompt().trimmed() == task) m_workspace.setPrompt(QString());
}

void WorkspaceTeamRuns::notify(const QString& message) {
    m_workspace.notify(message);
}

}  // namespace orvo
