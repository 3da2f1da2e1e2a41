#include "orvoctl/CommandLineHost.h"
#include "orvoctl/Console.h"
#include "orvoctl/Interrupts.h"
#include "orvoctl/Invocation.h"
#include "orvoctl/RunRequest.h"
#include "orvoctl/StoredState.h"
#include "orvoctl/WatchedSessions.h"
#include "orvoctl/runAccess.h"
#include "platform/Clock.h"
#include "platform/textEnds.h"
#include "team_runs/Changes.h"
#include "team_runs/TeamRuns.h"

#include <QJsonArray>
#include <QJsonObject>

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>

namespace orvo::ctl {
namespace {

constexpr int titleCharacters = 52;

using Outcome = WatchedSessions::Outcome;

bool isFolder(const FilePath& path) {
    struct stat status{};
    return stat(path.bytes().constData(), &status) == 0 && S_ISDIR(status.st_mode);
}

QStringList namesOf(const QList<Provider>& providers) {
    QStringList names;
    for (const Provider& provider : providers)
        names.append(provider.shownName());
    return names;
}

struct ChangeCounts {
    int added = 0;
    int changed = 0;
    int removed = 0;
};

std::optional<ChangeCounts> countChanges(const TeamRun& run, const RunCopy& copy) {
    const auto changes = RunFiles::changes(run.baseline(), copy.directory);
    if (!changes) return std::nullopt;
    ChangeCounts counts;
    for (const FileChange& change : *changes) {
        switch (change.kind()) {
            case FileChange::Kind::Added:
                ++counts.added;
                break;
            case FileChange::Kind::Changed:
                ++counts.changed;
                break;
            case FileChange::Kind::Removed:
                ++counts.removed;
                break;
        }
    }
    return counts;
}

QJsonValue jsonOf(const std::optional<ChangeCounts>& counts) {
    if (!counts) return QJsonValue::Null;
    return QJsonObject{{QStringLiteral("added"), counts->added},
                       {QStringLiteral("changed"), counts->changed},
                       {QStringLiteral("removed"), counts->removed}};
}

QString textOf(const std::optional<ChangeCounts>& counts) {
    if (!counts) return QStringLiteral("changes unreadable");
    return QStringLiteral("%1 added, %2 changed, %3 removed")
        .arg(counts->added)
        .arg(counts->changed)
        .arg(counts->removed);
}

/// What is printed of one assistant at the end.
struct CopyResult {
    std::shared_ptr<TerminalSession> session;
    FilePath directory;
    /// Absent in the shared folder, where nobody's changes can be told apart.
    std::optional<ChangeCounts> changes;
};

void printTable(const QList<CopyResult>& results, const std::optional<TeamRun>& run) {
    QList<QStringList> rows;
    for (const CopyResult& result : results) {
        rows.append({oneLine(result.session->providerID()), stateOf(*result.session)});
        if (run) rows.last().append(textOf(result.changes));
    }
    print(columns(rows));
    if (run) print("Run " + uuidText(run->id).toLatin1() + '\n');
}

void printJson(const QList<CopyResult>& results, const std::optional<TeamRun>& run, const FilePath& project,
               const QString& message) {
    QJsonArray copies;
    for (const CopyResult& result : results) {
        const auto code = result.session->exitCode();
        QJsonObject copy{
            {QStringLiteral("provider"), result.session->providerID()},
            {QStringLiteral("session"), uuidText(result.session->id())},
            {QStringLiteral("exitCode"), code ? QJsonValue(*code) : QJsonValue(QJsonValue::Null)},
            {QStringLiteral("state"), stateOf(*result.session)},
            {QStringLiteral("changes"), jsonOf(result.changes)}};
        insertPath(copy, QStringLiteral("directory"), result.directory);
        copies.append(copy);
    }
    QJsonObject document{
        {QStringLiteral("run"), run ? QJsonValue(uuidText(run->id)) : QJsonValue(QJsonValue::Null)},
        {QStringLiteral("copies"), copies},
        {QStringLiteral("message"), message}};
    insertPath(document, QStringLiteral("project"), project);
    Invocation::printJson(QJsonDocument(document));
}

/// One call of "run", from the first check to the table of results.
class Run {
public:
    Run(const Invocation& invocation, RunRequest request)
        : m_invocation(invocation), m_request(std::move(request)), m_host(m_state) {}

    ExitStatus execute() {
        if (!isFolder(m_request.project)) {
            return refuse(QStringLiteral("The project folder \"%1\" is not available.")
                              .arg(m_request.project.display()));
        }
        for (const Provider& connector : m_request.connectors)
            m_state.assistants().addTemporary(connector);
        const auto providers = chosenProviders(m_invocation, m_request, m_state.assistants());
        if (!providers) {
            return providers.error().code == static_cast<int>(ExitStatus::WrongUsage)
                       ? m_invocation.wrongUsage(providers.error().message)
                       : refuse(providers.error().message);
        }
        return m_invocation.isSet("shared") ? runShared(*providers) : runSeparate(*providers);
    }

private:
    /// Nothing has been started.
    ExitStatus refuse(const QString& sentence, ExitStatus status = ExitStatus::Failed) const {
        if (m_invocation.format() == Invocation::Format::Json)
            printJson({}, std::nullopt, m_request.project, sentence);
        else
            printError(sentence);
        return status;
    }

    ExitStatus runShared(const QList<Provider>& providers) {
        for (const Provider& provider : providers) {
            m_host.startSession(provider.id, firstCharacters(m_request.task, titleCharacters),
                                provider.batchCommand(m_request.task), m_request.project, {});
        }
        return watch(providers, std::nullopt);
    }

    ExitStatus runSeparate(const QList<Provider>& providers) {
        TeamRuns engine(m_host, m_clock, runsFolder());
        m_host.setEngine(&engine);
        const ExitStatus status = prepare(engine, providers);
        m_host.setEngine(nullptr);
        return status;
    }

    ExitStatus prepare(TeamRuns& engine, const QList<Provider>& providers) {
        reportUnfinishedApplies();
        QEventLoop loop;
        QObject::connect(&engine, &TeamRuns::preparingRunChanged, &loop, [&] {
            if (!engine.preparingRun()) loop.quit();
        });
        QObject::connect(&engine, &TeamRuns::preparationProgressChanged, &loop,
                         [&] { showProgress(engine.preparationProgress()); });
        bool interrupted = false;
        const auto interruption = QObject::connect(&m_interrupts, &Interrupts::interrupted, &loop, [&] {
            interrupted = true;
            engine.cancelPreparation();
        });
        engine.startTeamRun(m_request.task, providers, m_request.project);
        if (engine.preparingRun()) loop.exec();
        QObject::disconnect(interruption);
        endProgress();
        if (interrupted && m_host.sessions().empty())
            return refuse(m_host.lastNotice(), ExitStatus::Interrupted);
        if (!engine.selectedRunID()) return refuse(m_host.lastNotice());
        return watch(providers, engine.selectedRunID(), &engine);
    }

    ExitStatus watch(const QList<Provider>& providers, std::optional<QUuid> runID,
                     const TeamRuns* engine = nullptr) {
        WatchedSessions sessions(namesOf(providers), m_host.sessions());
        QObject::connect(&m_interrupts, &Interrupts::interrupted, &sessions, &WatchedSessions::interrupt);
        const Outcome outcome = sessions.wait(m_request.timeout);
        const std::optional<TeamRun> run = runID && engine ? engine->run(*runID) : std::nullopt;
        return report(sessions, outcome, run);
    }

    ExitStatus report(const WatchedSessions& sessions, Outcome outcome, const std::optional<TeamRun>& run) {
        QString message;
        if (outcome == Outcome::Interrupted) message = QStringLiteral("Interrupted.");
        if (outcome == Outcome::TimedOut) message = QStringLiteral("The time limit has passed.");
        if (outcome == Outcome::Ended && !sessions.allSucceeded())
            message = QStringLiteral("Not every assistant succeeded.");
        QList<CopyResult> results;
        for (const auto& session : sessions.sessions()) {
            results.append({session, session->directory(), std::nullopt});
            if (!run) continue;
            const auto copy = std::ranges::find(run->copies, std::optional(session->id()), &RunCopy::session);
            if (copy != run->copies.end()) results.last().changes = countChanges(*run, *copy);
        }
        if (m_invocation.format() == Invocation::Format::Json) {
            printJson(results, run, m_request.project, message);
        } else {
            printTable(results, run);
            if (!message.isEmpty()) printError(message);
        }
        if (outcome == Outcome::Interrupted) return ExitStatus::Interrupted;
        return sessions.allSucceeded() ? ExitStatus::Done : ExitStatus::Failed;
    }

    void showProgress(const RunFiles::CopyProgress& progress) {
        if (progress.allFiles == 0 || isatty(STDERR_FILENO) != 1) return;
        constexpr double mega = 1e6;
        std::fprintf(stderr, "\rCopying the project: %d of %d files, %.1f of %.1f MB\033[K", progress.files,
                     progress.allFiles, static_cast<double>(progress.bytes) / mega,
                     static_cast<double>(progress.allBytes) / mega);
        m_showsProgress = true;
    }

    void endProgress() {
        if (std::exchange(m_showsProgress, false)) std::fputs("\r\033[K", stderr);
    }

    const Invocation& m_invocation;
    const RunRequest m_request;
    // First of what has threads, so that a signal at any time stops what has been started.
    Interrupts m_interrupts;
    StoredState m_state;
    SystemClock m_clock;
    CommandLineHost m_host;
    bool m_showsProgress = false;
};

ExitStatus run(const Invocation& invocation) {
    const auto request = RunRequest::parse(invocation);
    if (!request) return invocation.wrongUsage(request.error().message);
    return Run(invocation, *request).execute();
}

constexpr std::array options = {
    Option{"project", "DIR", "the project folder (the current folder)"},
    Option{"assistant", "ID", "a connector that works on the task (repeatable; those selected and ready)"},
    Option{"connector", "NAME=TEMPLATE",
           "a connector for this run only (repeatable); it joins the run unless --assistant is given"},
    Option{"shared", nullptr, "work in the project folder itself, without copies"},
    Option{"timeout", "SECONDS", "stop what still runs after this time"},
};

}  // namespace

const Verb runVerb = {
    "run",
    "TASK",
    "run a task on several assistants, each in its own copy, and wait for them",
    "Gives TASK to the assistants, each in its own copy of the project and in a terminal of its\n"
    "own that nothing is typed into, and waits for all of them. The project stays as it is; see\n"
    "\"review\" and \"apply\" for what comes next. A TASK of \"-\" is read from standard input; put\n"
    "\"--\" before one that begins with \"-\". Succeeds only when every assistant does.",
    options,
    run};

}  // namespace orvo::ctl
