#pragma once

#include "team_runs/TeamRunHost.h"
#include "team_runs/TeamRuns.h"
#include "workspace/TeamRunHandover.h"

#include <QObject>

namespace orvo {

class Workspace;

/// Joins the team-run engine to the workspace: tasks for separate copies go down to it, and what it needs of
/// the program around it comes from the workspace. Attached to the workspace for as long as it lives.
class WorkspaceTeamRuns final : public QObject, public TeamRunHandover, private TeamRunHost {
    Q_OBJECT

public:
    /// Both references outlive this object.
    WorkspaceTeamRuns(Workspace& workspace, Clock& clock, const FilePath& runsFolder,
                      QObject* parent = nullptr);
    ~WorkspaceTeamRuns() override;

    TeamRuns& engine() { return m_engine; }

    void startTeamRun(const QString& task, const QList<Provider>& providers,
                      const FilePath& project) override;
    void cancelPreparation() override;
    bool preparingRun() const override;
    QString preparationStatus() const override;
    QString reasonToKeep(const TerminalSession& session) const override;
    void runSessionFinished(TerminalSession& session) override;

private:
    std::shared_ptr<TerminalSession> startSession(const QString& provider, const QString& title,
                                                  const QString& command, const FilePath& directory,
                                                  std::function<void(TerminalSession&)> beforeStart) override;
    std::shared_ptr<TerminalSession> session(const QUuid& id) const override;
    Provider provider(const QString& id) const override;
    bool isReady(const Provider& provider) const override;
    bool confirmDiscard() override;
    std::optional<QString> historyOutput(const FilePath& directory) const override;
    void clearPromptIfStill(const QString& task) override;
    void notify(const QString& message) override;

    Workspace& m_workspace;
    TeamRuns m_engine;
};

}  // namespace orvo
