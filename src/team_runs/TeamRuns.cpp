#include "team_runs/TeamRuns.h"

#include "platform/Clock.h"
#include "platform/observe.h"
#include "platform/runInBackground.h"
#include "platform/textEnds.h"
#include "team_runs/Apply.h"
#include "team_runs/RunFolder.h"
#include "team_runs/RunStore.h"
#include "team_runs/TeamRunHost.h"
#include "team_runs/comparison.h"
#include "terminal/TerminalSession.h"

#include <QPointer>

#include <algorithm>

namespace orvo {
namespace {

using namespace std::chrono_literals;

constexpr auto preparationLimit = 60s;
// Several files of a run change together; one look is enough for all of them.
constexpr auto reloadDelay = 200ms;
constexpr qsizetype titleCharacters = 52;

// The assistants read this; it is no text of the interface.
const QString& assistantPrefix() {
    static const QString prefix = QStringLiteral(
        "You are working in an independent copy of the project. Complete the task within this copy. Preserve "
        "provider "
        "approval policies. Explain your changes and how to verify them. Task: ");
    return prefix;
}

QString commandFor(const Provider& provider, const QString& task) {
    return provider.batchCommand(assistantPrefix() + task);
}

QString textOf(const TerminalSession& session) {
    return QString::fromStdString(session.screen().plainText());
}

}  // namespace

/// What the background work of one attempt needs; values only.
struct TeamRuns::Preparation {
    QString task;
    QStringList providers;
    FilePath project;
    FilePath storage;
    std::stop_token stop;
    std::function<void(const RunFiles::CopyProgress&)> progress;
};

/// What comes back. The folder is there whenever it was created, also after a failure.
struct TeamRuns::Prepared {
    std::shared_ptr<RunFolder> folder;
    Result<TeamRun> run;
};

TeamRuns::TeamRuns(TeamRunHost& host, Clock& clock, FilePath runsFolder, QObject* parent)
    : QObject(parent), m_host(host), m_clock(clock), m_runsFolder(std::move(runsFolder)) {
    const auto changed = [this] {
        scheduleReload();
    };
    connect(&m_watcher, &QFileSystemWatcher::directoryChanged, this, changed);
}

TeamRuns::~TeamRuns() {
    m_stop.request_stop();
    saveUnsavedRuns();
}

void TeamRuns::setSelectedRunID(const std::optional<QUuid>& id) {
    if (assign(m_selectedRunID, id)) Q_EMIT selectedRunIDChanged();
}

std::optional<TeamRun> TeamRuns::run(const QUuid& id) const {
    const auto found = std::ranges::find(m_teamRuns, id, &TeamRun::id);
    if (found == m_teamRuns.end()) return std::nullopt;
    return *found;
}

TeamRun* TeamRuns::find(const QUuid& id) {
    const auto found = std::ranges::find(m_teamRuns, id, &TeamRun::id);
    return found == m_teamRuns.end() ? nullptr : &*found;
}

void TeamRuns::saveRun(const TeamRun& run) {
    const Result<void> saved = RunStore::save(run);
    if (saved) {
        m_unsavedRuns.remove(run.id);
        saveUnsavedRuns();
        return;
    }
    m_unsavedRuns.insert(run.id);
    m_host.notify(tr("Could not save the run record: ") + saved.error().message);
}

void TeamRuns::saveUnsavedRuns() {
    m_unsavedRuns.removeIf([this](const QUuid& id) {
        const TeamRun* const run = find(id);
        return run == nullptr || RunStore::save(*run).has_value();
    });
}

// Preparing

bool TeamRuns::mayStart(const QString& task, const QList<Provider>& providers) {
    if (providers.isEmpty() || providers.size() > maximumAssistants) {
        m_host.notify(tr("Choose 1 to 8 assistants per run."));
        return false;
    }
    for (const Provider& provider : providers) {
        if (commandFor(provider, task).toUtf8().size() <= maximumCommandBytes) continue;
        m_host.notify(
            tr("This task is too long to be passed to %1. Shorten it, or put it into a file of the project.")
                .arg(provider.shownName()));
        return false;
    }
    return m_host.confirmDiscard();
}

void TeamRuns::startTeamRun(const QString& task, const QList<Provider>& providers, const FilePath& project,
                            const std::optional<FilePath>& storage) {
    if (m_preparingRun || !mayStart(task, providers)) return;
    // The question may have let the person start another one meanwhile.
    if (m_preparingRun) return;
    const QUuid token = QUuid::createUuid();
    m_preparationID = token;
    m_stop = {};
    m_abandoned.pause();
    m_preparingRun = true;
    Q_EMIT preparingRunChanged();
    m_clock.after(preparationLimit, this, [this, token] { preparationTimedOut(token); });

    Preparation preparation{task, {}, project, storage.value_or(m_runsFolder), m_stop.get_token(), {}};
    for (const Provider& provider : providers)
        preparation.providers.append(provider.id);
    preparation.progress = [engine = QPointer(this), token](const RunFiles::CopyProgress& progress) {
        QMetaObject::invokeMethod(
            QCoreApplication::instance(),
            [engine, token, progress] {
                if (engine) engine->reportProgress(token, progress);
            },
            Qt::QueuedConnection);
    };
    runInBackground(
        this, [preparation = std::move(preparation)] { return prepare(preparation); },
        [this, token, providers](Prepared result) { prepared(std::move(result), token, providers); });
}

TeamRuns::Prepared TeamRuns::prepare(const Preparation& preparation) {
    Result<RunFolder> created = RunFolder::create(preparation.storage);
    if (!created) return {nullptr, tl::unexpected<Error>(created.error())};
    const auto folder = std::make_shared<RunFolder>(std::move(*created));

    TeamRun run{QUuid::createUuid(), preparation.task, preparation.project, folder->path(), 0, {}};
    QList<FilePath> destinations = {run.baseline()};
    for (const QString& provider : preparation.providers) {
        const FilePath directory = run.root.child(RunFiles::freshFolderName());
        destinations.append(directory);
        run.copies.append({QUuid::createUuid(), provider, directory, std::nullopt, std::nullopt});
    }
    const auto copied =
        RunFiles::snapshot(preparation.project, destinations, {preparation.stop, preparation.progress});
    if (!copied) return {folder, tl::unexpected<Error>(copied.error())};
    return {folder, run};
}

void TeamRuns::prepared(Prepared result, const QUuid& token, const QList<Provider>& providers) {
    const bool wanted = m_preparingRun && token == m_preparationID;
    if (!wanted || !result.run) {
        if (result.folder) m_abandoned.add(result.folder->path());
        if (!wanted) return;
        endPreparation();
        m_host.notify(result.run.error().message);
        return;
    }
    TeamRun run = *result.run;
    run.created = RunStore::nextDate(m_teamRuns, TeamRun::secondsOf(m_clock.now()));
    // Recorded before anything starts: whatever happens from here on, the copies are not lost.
    saveRun(run);
    result.folder->keep();
    m_ownRuns.insert(run.id);
    RunStore::insertByAge(m_teamRuns, run);
    m_selectedRunID = run.id;
    Q_EMIT teamRunsChanged();
    Q_EMIT selectedRunIDChanged();
    followRuns();

    startSessions(run, providers);
    if (const TeamRun* const started = find(run.id)) saveRun(*started);
    endPreparation();
    m_host.clearPromptIfStill(run.prompt);
    m_host.notify(tr("Assistants are working in separate copies. Review their results in Team runs."));
}

void TeamRuns::startSessions(const TeamRun& run, const QList<Provider>& providers) {
    const QString title = firstCharacters(run.prompt, titleCharacters);
    for (qsizetype i = 0; i < providers.size(); ++i) {
        const auto remember = [this, id = run.id, i](TerminalSession& session) {
            TeamRun* const recorded = find(id);
            if (!recorded) return;
            recorded->copies[i].session = session.id();
            Q_EMIT teamRunsChanged();
        };
        m_host.startSession(providers[i].id, title, commandFor(providers[i], run.prompt),
                            run.copies[i].directory, remember);
    }
}

void TeamRuns::cancelPreparation() {
    if (!m_preparingRun) return;
    m_preparationID = QUuid::createUuid();
    m_stop.request_stop();
    endPreparation();
    m_host.notify(tr("Run preparation cancelled. No assistants were started."));
}

void TeamRuns::preparationTimedOut(const QUuid& token) {
    if (!m_preparingRun || token != m_preparationID) return;
    cancelPreparation();
    m_host.notify(tr("Copying timed out. Make sure your project is downloaded locally, then try again."));
}

void TeamRuns::endPreparation() {
    m_abandoned.resume();
    const bool progressed = assign(m_progress, RunFiles::CopyProgress());
    m_preparingRun = false;
    Q_EMIT preparingRunChanged();
    if (progressed) Q_EMIT preparationProgressChanged();
}

void TeamRuns::reportProgress(const QUuid& token, const RunFiles::CopyProgress& progress) {
    if (!m_preparingRun || token != m_preparationID) return;
    if (assign(m_progress, progress)) Q_EMIT preparationProgressChanged();
}

// Results

void TeamRuns::runSessionFinished(TerminalSession& session) {
    bool found = false;
    for (TeamRun& run : m_teamRuns) {
        const auto copy = std::ranges::find(run.copies, std::optional(session.id()), &RunCopy::session);
        if (copy == run.copies.end()) continue;
        found = true;
        copy->exitCode = session.exitCode();
        saveRun(run);
        // The history keeps the text as well.
        [[maybe_unused]] const Result<void> saved = RunStore::saveOutput(run, *copy, textOf(session));
    }
    if (found) Q_EMIT teamRunsChanged();
}

bool TeamRuns::copyRunning(const RunCopy& copy) const {
    if (!copy.session) return false;
    const auto session = m_host.session(*copy.session);
    return session && session->running();
}

CopyState TeamRuns::copyState(const RunCopy& copy) const {
    if (copyRunning(copy)) return CopyState::Working;
    if (!copy.exitCode) return CopyState::Interrupted;
    return *copy.exitCode == 0 ? CopyState::Finished : CopyState::Failed;
}

QString TeamRuns::runOutput(const RunCopy& copy, const TeamRun& run) const {
    if (copy.session) {
        if (const auto session = m_host.session(*copy.session)) return textOf(*session);
    }
    if (const auto recorded = RunStore::output(run, copy)) return *recorded;
    return m_host.historyOutput(copy.directory).value_or(tr("No captured output."));
}

void TeamRuns::apply(const TeamRun& run, const RunCopy& copy, const QList<FileChange>& changes,
                     std::function<void(const Result<void>&)> done) {
    if (m_applyingRunID) return;
    m_applyingRunID = run.id;
    Q_EMIT applyingRunIDChanged();
    runInBackground(
        this,
        [changes, project = run.project, result = copy.directory, backup = run.newBackupFolder()] {
            return RunFiles::apply(changes, project, result, backup);
        },
        [this, done = std::move(done)](const Result<void>& outcome) {
            m_applyingRunID.reset();
            Q_EMIT applyingRunIDChanged();
            done(outcome);
        });
}

std::shared_ptr<TerminalSession> TeamRuns::summarizeRun(const TeamRun& run) {
    const QString codex = QStringLiteral("codex");
    const Provider provider = m_host.provider(codex);
    if (provider.id != codex || !m_host.isReady(provider)) {
        m_host.notify(tr("Connect Codex to compare the results with AI."));
        return nullptr;
    }
    if (std::ranges::any_of(run.copies, [this](const RunCopy& copy) { return copyRunning(copy); })) {
        m_host.notify(tr("Wait for the assistants to finish before comparing."));
        return nullptr;
    }
    QList<ComparisonBlock> blocks;
    for (const RunCopy& copy : run.copies) {
        blocks.append({m_host.provider(copy.provider).shownName(), copy.exitCode, runOutput(copy, run)});
    }
    const auto command = comparisonCommand(run.prompt, blocks);
    if (!command) {
        m_host.notify(tr("The task of this run is too long to be compared."));
        return nullptr;
    }
    return m_host.startSession(codex, tr("Compare team results"), *command, run.root);
}

// Records

void TeamRuns::loadTeamRuns() {
    if (const auto stored = RunStore::load(m_runsFolder); stored && assign(m_teamRuns, *stored)) {
        Q_EMIT teamRunsChanged();
    }
    followRuns();
    struct Leftovers {
        QList<FilePath> folders;
        QList<RunFiles::UnfinishedApply> applies;
    };
    runInBackground(
        this,
        [folder = m_runsFolder] {
            return Leftovers{RunFolder::abandonedIn(folder), RunFiles::takeUnfinishedApplies(folder)};
        },
        [this](const Leftovers& leftovers) {
            for (const FilePath& folder : leftovers.folders)
                m_abandoned.add(folder);
            if (leftovers.applies.isEmpty()) return;
            m_unfinishedApplies = leftovers.applies;
            Q_EMIT unfinishedAppliesChanged();
            for (const RunFiles::UnfinishedApply& apply : leftovers.applies)
                m_host.notify(apply.message());
        });
}

void TeamRuns::followRuns() {
    QStringList folders = {QFile::decodeName(m_runsFolder.bytes())};
    for (const TeamRun& run : m_teamRuns)
        folders.append(QFile::decodeName(run.root.bytes()));
    const QStringList followed = m_watcher.directories();
    folders.removeIf(
        [&followed](const QString& folder) { return followed.contains(folder) || !QFile::exists(folder); });
    if (!folders.isEmpty()) m_watcher.addPaths(folders);
}

void TeamRuns::scheduleReload() {
    if (m_reloadDue) return;
    m_reloadDue = true;
    m_clock.after(reloadDelay, this, [this] {
        m_reloadDue = false;
        reload();
    });
}

void TeamRuns::reload() {
    runInBackground(
        this, [folder = m_runsFolder] { return RunStore::load(folder).value_or(QList<TeamRun>()); },
        [this](const QList<TeamRun>& stored) { merge(stored); });
}

void TeamRuns::merge(const QList<TeamRun>& stored) {
    // Records of this process may be ahead of what was read, or may have failed to be saved.
    QList<TeamRun> merged;
    for (const TeamRun& run : m_teamRuns) {
        if (m_ownRuns.contains(run.id)) RunStore::insertByAge(merged, run);
    }
    for (const TeamRun& run : stored) {
        if (!m_ownRuns.contains(run.id)) RunStore::insertByAge(merged, run);
    }
    if (assign(m_teamRuns, merged)) Q_EMIT teamRunsChanged();
    followRuns();
}

}  // namespace orvo
