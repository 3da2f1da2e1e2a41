#pragma once

#include "assistants/Assistants.h"
#include "files/ProjectFiles.h"
#include "history/HistoryStore.h"
#include "platform/Clock.h"
#include "platform/Dialogs.h"
#include "platform/Launcher.h"
#include "platform/SleepInhibitor.h"
#include "terminal/TerminalSession.h"
#include "workspace/Destination.h"
#include "workspace/RunActivity.h"
#include "workspace/TeamRunHandover.h"

#include <QObject>
#include <QSet>
#include <QUuid>

#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace orvo {

class HistoryInbox;
class Preferences;
class ReportingPreferences;

/// What the hub is built from. All references outlive the workspace.
struct WorkspaceServices {
    /// Null for a workspace that neither reads nor writes preferences.
    Preferences* preferences = nullptr;
    Clock& clock;
    Dialogs& dialogs;
    Launcher& launcher;
    SleepInhibitor& sleepInhibitor;
    ToolEnvironment tools;
    /// Where command-line runs leave their finished sessions for this history; null for none.
    const HistoryInbox* historyInbox = nullptr;
};

/// The hub behind the main window: it owns the engines and the terminal sessions, and keeps what several
/// screens share. Main thread only; every field has a signal that is emitted when it changes.
class Workspace : public QObject {
    Q_OBJECT

public:
    explicit Workspace(WorkspaceServices services, QObject* parent = nullptr);
    ~Workspace() override;

    /// Questions put to the person.
    Dialogs& dialogs() { return m_services.dialogs; }
    Assistants& assistants();
    HistoryStore& history();
    ProjectFiles& files();
    const Assistants& assistants() const;
    const HistoryStore& history() const;
    const ProjectFiles& files() const;

    Destination destination() const;
    const std::optional<FilePath>& folder() const;
    /// The folder's last component, or "Choose a project".
    QString folderName() const;
    const QList<FilePath>& recentFolders() const;
    const QSet<QString>& selectedProviders() const;
    const QString& prompt() const;
    bool separateCopies() const;
    bool preparingRun() const;
    /// How far the copies of the run being prepared have come; empty at other times.
    QString preparationStatus() const;
    bool keepAwake() const;
    bool focusMode() const;
    const std::optional<QString>& toast() const;
    bool presentConnector() const;
    const std::optional<Provider>& editingProvider() const;
    /// What the person has typed to be run in the project.
    const QString& runnerCommand() const;
    /// In creation order.
    const std::vector<std::shared_ptr<TerminalSession>>& sessions() const;
    const std::optional<QUuid>& activeSessionID() const;
    std::shared_ptr<TerminalSession> activeSession() const;
    std::shared_ptr<TerminalSession> session(const QUuid& id) const;

    void setDestination(Destination destination);
    void setSelectedProviders(const QSet<QString>& ids);
    void setPrompt(const QString& prompt);
    void setSeparateCopies(bool separate);
    void setKeepAwake(bool keepAwake);
    void setFocusMode(bool focus);
    void setRunnerCommand(const QString& command);
    void setActiveSessionID(const QUuid& id);
    /// Shows the connector editor for a record, or for a new connector when none is given.
    void editConnector(const std::optional<Provider>& provider);
    void dismissConnector();
    /// Keeps a connector and says so.
    void saveProvider(const Provider& provider);

    /// Opens a project folder, remembers it, says so.
    void setFolder(const FilePath& folder);
    /// For this run only: nothing is checked, stored or said ("--workspace", the example project).
    void openFolderForThisRun(const FilePath& folder);
    /// Asks about unsaved changes, then for a folder.
    void chooseFolder();
    void revealFolder();
    /// Shows a notice for four seconds, unless a newer one replaces it.
    void notify(const QString& message);
    /// Refreshes tools and files and says so.
    void refreshWorkspace();

    /// Who takes over tasks in "Separate copies" mode; null while nobody does. Outlives the workspace, or is
    /// taken away first.
    void setTeamRuns(TeamRunHandover* teamRuns);
    bool hasTeamRuns() const;
    /// For the team-run engine: `preparingRun` or `preparationStatus` may have another answer now.
    void refreshPreparingRun();
    void refreshPreparationStatus();

    /// The composer's send action.
    void dispatchPrompt();
    void cancelPreparation();
    /// Starts one provider in the project folder.
    void launch(const Provider& provider, const QString& prompt);
    void signIn(const Provider& provider);
    void resume(const Provider& provider);

    using SessionStep = std::function<void(TerminalSession&)>;
    /// Any command as a session: listed, in front, started, with the one common finish step and then
    /// `onFinish`.
    std::shared_ptr<TerminalSession> startSession(const QString& provider, const QString& title,
                                                  const QString& command, const FilePath& directory,
                                                  const SessionStep& beforeStart = {},
                                                  SessionStep onFinish = {});
    /// Runs the open file with the interpreter of its type, saving it first; says so when there is none.
    void runFile();
    /// Runs `runnerCommand` in the project; asks for a project when none is open.
    void runCommand();
    /// Asks first when the session still runs.
    void closeSession(const std::shared_ptr<TerminalSession>& session);
    /// Shows the session alone.
    void focusSession(const QUuid& id);
    void stopAll();
    bool anySessionRunning() const;

    void exportSession(const TerminalSession& session);
    void exportText(const QString& text, const QString& name);
    void clearHistory();

    /// Quitting: asks what must be asked; false when the person stays. Stops nothing yet.
    bool confirmQuit();

Q_SIGNALS:
    void destinationChanged();
    void folderChanged();
    void recentFoldersChanged();
    void selectedProvidersChanged();
    void promptChanged();
    void separateCopiesChanged();
    void preparingRunChanged();
    void preparationStatusChanged();
    void keepAwakeChanged();
    void focusModeChanged();
    void toastChanged();
    void presentConnectorChanged();
    void runnerCommandChanged();
    void sessionsChanged();
    void activeSessionIDChanged();
    /// Some listed session started or ended.
    void sessionStatesChanged();
    /// What some listed session needs of the person.
    void sessionMarksChanged();
    void teamRunsAttached();

private:
    void restore();
    void rememberFolder(const FilePath& folder);
    void reportUnsaved(const Error& error);
    std::optional<FilePath> ensureFolder();
    QList<Provider> taskTargets() const;
    std::shared_ptr<TerminalSession> listedOrClosing(const QUuid& id) const;
    void sessionFinished(TerminalSession& session);
    void updateAwakeState();

    WorkspaceServices m_services;
    std::unique_ptr<ReportingPreferences> m_preferences;
    RunActivity m_activity;
    Assistants m_assistants;
    HistoryStore m_history;
    ProjectFiles m_files;
    TeamRunHandover* m_teamRuns = nullptr;

    Destination m_destination = Destination::Workspace;
    std::optional<FilePath> m_folder;
    QList<FilePath> m_recentFolders;
    QSet<QString> m_selectedProviders = {QStringLiteral("claude"), QStringLiteral("codex")};
    QString m_prompt;
    bool m_separateCopies = true;
    bool m_preparingRun = false;
    bool m_keepAwake = false;
    bool m_focusMode = false;
    std::optional<QString> m_toast;
    // Identifies the latest notice, so that the timer of an older one leaves it alone.
    quint64 m_toastToken = 0;
    bool m_presentConnector = false;
    std::optional<Provider> m_editingProvider;
    QString m_runnerCommand;
    // Invariant: names a listed session, or nothing.
    std::optional<QUuid> m_activeSessionID;
    std::vector<std::shared_ptr<TerminalSession>> m_sessions;
    // Closed while running: kept until their last output is recorded.
    std::vector<std::shared_ptr<TerminalSession>> m_closingSessions;
};

}  // namespace orvo
