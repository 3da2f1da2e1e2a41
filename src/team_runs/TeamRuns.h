#pragma once

#include "assistants/Provider.h"
#include "platform/FilePath.h"
#include "team_runs/AbandonedFolders.h"
#include "team_runs/ApplyJournal.h"
#include "team_runs/FileChange.h"
#include "team_runs/Snapshot.h"
#include "team_runs/TeamRun.h"

#include <QFileSystemWatcher>
#include <QObject>
#include <QSet>

#include <functional>
#include <memory>
#include <optional>
#include <stop_token>

namespace orvo {

class Clock;
class TeamRunHost;
class TerminalSession;

/// How one copy of a run stands.
enum class CopyState { Working, Finished, Failed, Interrupted };

/// Gives a task to several assistants, each in its own copy of the project, and keeps what comes of it. Main
/// thread only; copies are made on background threads, and what comes back of an abandoned attempt is
/// dropped.
class TeamRuns : public QObject {
    Q_OBJECT

public:
    static constexpr int maximumAssistants = 8;

    /// The references outlive this object. `runsFolder` is where runs are kept; it need not exist yet.
    TeamRuns(TeamRunHost& host, Clock& clock, FilePath runsFolder, QObject* parent = nullptr);
    ~TeamRuns() override;

    /// Newest first.
    const QList<TeamRun>& teamRuns() const { return m_teamRuns; }
    const std::optional<QUuid>& selectedRunID() const { return m_selectedRunID; }
    bool preparingRun() const { return m_preparingRun; }
    /// How far the copies of the run being prepared have come; all zero at other times.
    const RunFiles::CopyProgress& preparationProgress() const { return m_progress; }
    /// Applies that a former process did not finish, found by `loadTeamRuns`.
    const QList<RunFiles::UnfinishedApply>& unfinishedApplies() const { return m_unfinishedApplies; }

    void setSelectedRunID(const std::optional<QUuid>& id);
    std::optional<TeamRun> run(const QUuid& id) const;

    /// Reads the records, tidies up after processes that died, and from then on follows what other processes
    /// record. For models that keep things; called once.
    void loadTeamRuns();

    /// Where runs are kept; may not exist yet.
    const FilePath& runsFolder() const { return m_runsFolder; }

    /// Copies the project and starts one session per provider. Ignored while another run is being prepared.
    /// Without `storage`, the run is kept in the runs folder.
    void startTeamRun(const QString& task, const QList<Provider>& providers, const FilePath& project,
                      const std::optional<FilePath>& storage = std::nullopt);
    /// Does nothing unless a run is being prepared.
    void cancelPreparation();

    /// To be called for every session that has ended; records those of copies.
    void runSessionFinished(TerminalSession& session);

    bool copyRunning(const RunCopy& copy) const;
    CopyState copyState(const RunCopy& copy) const;
    /// The live screen, the recorded output, the history's, or a sentence that says there is none.
    QString runOutput(const RunCopy& copy, const TeamRun& run) const;

    /// Takes reviewed changes of a copy over into the run's project, in the background; see RunFiles::apply.
    /// `done` gets the outcome. Ignored while another apply goes on.
    void apply(const TeamRun& run, const RunCopy& copy, const QList<FileChange>& changes,
               std::function<void(const Result<void>&)> done);
    /// The run that is being applied from.
    const std::optional<QUuid>& applyingRunID() const { return m_applyingRunID; }

    /// Starts the read-only session that compares a run's results. Null when it could not; a notice says why.
    std::shared_ptr<TerminalSession> summarizeRun(const TeamRun& run);

Q_SIGNALS:
    void teamRunsChanged();
    void selectedRunIDChanged();
    void preparingRunChanged();
    void preparationProgressChanged();
    void applyingRunIDChanged();
    void unfinishedAppliesChanged();

private:
    struct Preparation;
    struct Prepared;

    bool mayStart(const QString& task, const QList<Provider>& providers);
    static Prepared prepare(const Preparation& preparation);
    void prepared(Prepared result, const QUuid& token, const QList<Provider>& providers);
    void startSessions(const TeamRun& run, const QList<Provider>& providers);
    void preparationTimedOut(const QUuid& token);
    void endPreparation();
    void reportProgress(const QUuid& token, const RunFiles::CopyProgress& progress);

    TeamRun* find(const QUuid& id);
    void saveRun(const TeamRun& run);
    void saveUnsavedRuns();
    void followRuns();
    void scheduleReload();
    void reload();
    void merge(const QList<TeamRun>& stored);

    TeamRunHost& m_host;
    Clock& m_clock;
    FilePath m_runsFolder;

    QList<TeamRun> m_teamRuns;
    std::optional<QUuid> m_selectedRunID;
    bool m_preparingRun = false;
    RunFiles::CopyProgress m_progress;
    QList<RunFiles::UnfinishedApply> m_unfinishedApplies;
    std::optional<QUuid> m_applyingRunID;

    /// Token of the current attempt; late answers to another one are dropped.
    QUuid m_preparationID;
    std::stop_source m_stop;
    AbandonedFolders m_abandoned;

    /// Runs whose sessions this process started: its records are the true ones.
    QSet<QUuid> m_ownRuns;
    /// Runs whose record is older than they are, because there was no room; tried again with the next record
    /// that has room, and at the end.
    QSet<QUuid> m_unsavedRuns;
    QFileSystemWatcher m_watcher;
    bool m_reloadDue = false;
};

}  // namespace orvo
