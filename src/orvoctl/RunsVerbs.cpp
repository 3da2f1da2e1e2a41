#include "assistants/Assistants.h"
#include "orvoctl/CommandLineHost.h"
#include "orvoctl/Console.h"
#include "orvoctl/Interrupts.h"
#include "orvoctl/Invocation.h"
#include "orvoctl/StoredState.h"
#include "orvoctl/WatchedSessions.h"
#include "orvoctl/runAccess.h"
#include "platform/Clock.h"
#include "platform/readFile.h"
#include "platform/textEnds.h"
#include "team_runs/RunStore.h"
#include "team_runs/TeamRuns.h"

#include <QJsonArray>
#include <QJsonObject>

#include <array>

namespace orvo::ctl {
namespace {

// The record with everything that stands in it, also what this version does not know.
QJsonObject recordOf(const TeamRun& run) {
    constexpr qsizetype longest = 16 << 20;
    const auto stored = readFile(run.root.child("run.json"), longest);
    QJsonObject record = QJsonDocument::fromJson(stored.value_or(QByteArray())).object();
    if (record.isEmpty()) record = QJsonDocument::fromJson(encodeTeamRun(run)).object();
    QJsonArray copies = record[QStringLiteral("copies")].toArray();
    for (qsizetype i = 0; i < copies.size() && i < run.copies.size(); ++i) {
        QJsonObject copy = copies[i].toObject();
        copy[QStringLiteral("state")] = stateOf(run.copies[i].exitCode);
        copies[i] = copy;
    }
    record[QStringLiteral("copies")] = copies;
    return record;
}

void printRuns(const QList<TeamRun>& runs) {
    constexpr qsizetype titleCharacters = 70;
    for (const TeamRun& run : runs) {
        print(uuidText(run.id).toLatin1() + "  " +
              run.createdTime().toLocalTime().toString(QStringLiteral("yyyy-MM-dd HH:mm")).toLatin1() + "  " +
              oneLine(firstCharacters(run.prompt, titleCharacters)).toUtf8() + '\n');
        QList<QStringList> rows;
        for (qsizetype i = 0; i < run.copies.size(); ++i) {
            const RunCopy& copy = run.copies[i];
            rows.append({QStringLiteral("  %1").arg(i + 1), oneLine(copy.provider), stateOf(copy.exitCode)});
        }
        print(columns(rows));
    }
}

ExitStatus runs(const Invocation& invocation) {
    if (!invocation.positional().isEmpty())
        return invocation.wrongUsage(QStringLiteral("\"runs\" takes no arguments."));
    reportUnfinishedApplies();
    const FilePath root =
        invocation.isSet("root") ? Invocation::path(invocation.value("root")) : runsFolder();
    const auto stored = RunStore::load(root);
    // A folder that was named must be there; our own appears with the first run.
    if (!stored && invocation.isSet("root"))
        return invocation.failed(QStringLiteral("The folder \"%1\" cannot be listed.").arg(root.display()));
    const QList<TeamRun> found = stored.value_or(QList<TeamRun>());
    if (invocation.format() == Invocation::Format::Json) {
        QJsonArray list;
        for (const TeamRun& run : found)
            list.append(recordOf(run));
        Invocation::printJson(QJsonDocument(list));
    } else {
        printRuns(found);
    }
    return ExitStatus::Done;
}

ExitStatus output(const Invocation& invocation) {
    if (invocation.positional().size() != 2)
        return invocation.wrongUsage(QStringLiteral("Give RUN and COPY."));
    const auto reviewed = copyOf(invocation);
    if (!reviewed) return invocation.failed(reviewed.error().message);
    StoredState state;
    CommandLineHost host(state);
    SystemClock clock;
    const TeamRuns engine(host, clock, runsFolder());
    const QString text = engine.runOutput(reviewed->copy, reviewed->run);
    if (invocation.format() == Invocation::Format::Json)
        Invocation::printJson(QJsonDocument(QJsonObject{{QStringLiteral("output"), text}}));
    else
        print(text.toUtf8() + '\n');
    return ExitStatus::Done;
}

/// Prints the lines of a session as they are finished; the last one may still change.
class Stream {
public:
    explicit Stream(const TerminalSession& session) : m_session(session) {}

    void printNew() { printUntil(1); }
    void printRest() { printUntil(0); }

private:
    void printUntil(qsizetype open) {
        const QStringList lines = QString::fromStdString(m_session.screen().plainText()).split(u'\n');
        for (; m_printed < lines.size() - open; ++m_printed)
            print(lines[m_printed].toUtf8() + '\n');
    }

    const TerminalSession& m_session;
    qsizetype m_printed = 0;
};

ExitStatus compare(const Invocation& invocation) {
    if (invocation.positional().size() != 1) return invocation.wrongUsage(QStringLiteral("Give RUN."));
    const auto run = runOf(invocation);
    if (!run) return invocation.failed(run.error().message);
    Interrupts interrupts;
    StoredState state;
    CommandLineHost host(state);
    SystemClock clock;
    TeamRuns engine(host, clock, runsFolder());
    const auto session = engine.summarizeRun(*run);
    if (!session) return invocation.failed(host.lastNotice());

    const bool streams = invocation.format() == Invocation::Format::Text;
    Stream stream(*session);
    WatchedSessions watched({host.provider(QStringLiteral("codex")).shownName()}, {session});
    if (streams) {
        QObject::connect(session.get(), &TerminalSession::revisionChanged, &watched,
                         [&stream] { stream.printNew(); });
    }
    QObject::connect(&interrupts, &Interrupts::interrupted, &watched, &WatchedSessions::interrupt);
    const auto outcome = watched.wait({});
    const int code = session->exitCode().value_or(-1);
    if (streams) {
        stream.printRest();
    } else {
        Invocation::printJson(QJsonDocument(
            QJsonObject{{QStringLiteral("exitCode"), code},
                        {QStringLiteral("output"), QString::fromStdString(session->screen().plainText())}}));
    }
    if (outcome == WatchedSessions::Outcome::Interrupted) return ExitStatus::Interrupted;
    return code == 0 ? ExitStatus::Done : ExitStatus::Failed;
}

constexpr std::array runsOptions = {
    Option{"root", "RUNSDIR", "the folder where the runs are recorded (the window's)"}};

}  // namespace

const Verb runsVerb = {"runs",
                       "",
                       "list the recorded team runs",
                       "Lists the recorded team runs, newest first, with the state of each copy.",
                       runsOptions,
                       runs};

const Verb outputVerb = {
    "output",
    "RUN COPY",
    "print what an assistant wrote in a run",
    "Prints the recorded terminal text of one copy. RUN is a run's id, a unique beginning\n"
    "of one, or \"latest\"; COPY is a connector's id or the copy's number from 1.",
    {},
    output};

const Verb compareVerb = {
    "compare",
    "RUN",
    "have the results of a run compared",
    "Starts a read-only Codex session that compares the results of RUN, and prints what it\n"
    "writes.",
    {},
    compare};

}  // namespace orvo::ctl
