#include "assistants/Assistants.h"
#include "orvoctl/Console.h"
#include "orvoctl/Interrupts.h"
#include "orvoctl/Invocation.h"
#include "orvoctl/SharedRun.h"
#include "orvoctl/StoredState.h"
#include "workspace/snapshotOf.h"
#include "workspace/taskRefusal.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QProcess>

#include <sys/stat.h>

#include <algorithm>
#include <array>

namespace orvo::ctl {
namespace {

// What a model has selected when it is created; the selection is not stored.
const QStringList defaultAssistants = {QStringLiteral("claude"), QStringLiteral("codex")};

struct Request {
    QString task;
    FilePath project;
    QList<Provider> connectors;
    std::chrono::seconds timeout{0};
};

bool isFolder(const FilePath& path) {
    struct stat status{};
    return stat(path.bytes().constData(), &status) == 0 && S_ISDIR(status.st_mode);
}

std::optional<Provider> parseConnector(const QString& text) {
    const auto equals = text.indexOf(u'=');
    if (equals < 1) return std::nullopt;
    Provider provider;
    provider.id = text.left(equals);
    provider.name = provider.id;
    provider.template_ = text.mid(equals + 1);
    provider.executable = QProcess::splitCommand(provider.template_).value(0);
    return provider;
}

QString readTask(const QString& argument) {
    if (argument != QLatin1String("-")) return argument.trimmed();
    QFile input;
    if (!input.open(stdin, QIODevice::ReadOnly)) return {};
    return QString::fromUtf8(input.readAll()).trimmed();
}

/// The request, or nothing after `problem` has been set.
std::optional<Request> parse(const Invocation& invocation, QString& problem) {
    Request request;
    const auto refuse = [&problem](const QString& sentence) {
        problem = sentence;
        return std::nullopt;
    };
    if (invocation.positional().size() != 1) {
        return refuse(QStringLiteral("Give exactly one TASK (in quotes, or - to read standard input)."));
    }
    for (const QString& text : invocation.values("connector")) {
        const auto connector = parseConnector(text);
        if (!connector)
            return refuse(QStringLiteral("--connector takes NAME=TEMPLATE, not \"%1\".").arg(text));
        request.connectors.append(*connector);
    }
    // A longer limit than a month is a mistake.
    const auto seconds = invocation.number("timeout", 1, 31 * 24 * 3600, 0);
    if (!seconds) return refuse(QStringLiteral("--timeout takes a number of seconds, at least 1."));
    request.timeout = std::chrono::seconds(*seconds);
    request.project = Invocation::path(invocation.value("project"));
    request.task = readTask(invocation.positional().first());
    if (request.task.isEmpty()) return refuse(QStringLiteral("The task is empty."));
    return request;
}

/// The ids of the assistants that are asked for; by default the connectors given, else the selection that is
/// ready.
QStringList chosenIds(const Invocation& invocation, const Request& request, const Assistants& assistants) {
    QStringList ids = invocation.values("assistant");
    if (!ids.isEmpty()) {
        ids.removeDuplicates();
        return ids;
    }
    for (const Provider& connector : request.connectors)
        ids.append(connector.id);
    if (!ids.isEmpty()) {
        ids.removeDuplicates();
        return ids;
    }
    std::ranges::copy_if(defaultAssistants, std::back_inserter(ids), [&](const QString& id) {
        const Provider provider = assistants.provider(id);
        return provider.id == id && assistants.isReady(provider);
    });
    return ids;
}

/// Why `provider` cannot work on `task`.
std::optional<QString> refusal(const Assistants& assistants, const Provider& provider, const QString& task) {
    if (!assistants.isReady(provider)) {
        return QStringLiteral("%1 is not ready: %2.")
            .arg(provider.name, assistants.connectionLabel(provider));
    }
    return taskRefusal(provider, task, provider.batchCommand(task));
}

void printResult(const Invocation& invocation, const Request& request, const SharedRun& run,
                 const QString& message) {
    if (invocation.format() == Invocation::Format::Text) {
        QList<QStringList> rows;
        for (const auto& session : run.sessions())
            rows.append({oneLine(session->providerID()), stateOf(*session)});
        print(columns(rows));
        if (!message.isEmpty()) printError(message);
        return;
    }
    QJsonArray copies;
    for (const auto& session : run.sessions()) {
        QJsonObject copy{{QStringLiteral("provider"), session->providerID()},
                         {QStringLiteral("session"), session->id().toString(QUuid::WithoutBraces).toUpper()},
                         {QStringLiteral("exitCode"), session->exitCode() ? QJsonValue(*session->exitCode())
                                                                          : QJsonValue(QJsonValue::Null)},
                         {QStringLiteral("state"), stateOf(*session)},
                         // Everybody worked in the same folder, so nobody's changes can be told apart.
                         {QStringLiteral("changes"), QJsonValue::Null}};
        insertPath(copy, QStringLiteral("directory"), session->directory());
        copies.append(copy);
    }
    QJsonObject result{{QStringLiteral("run"), QJsonValue::Null},
                       {QStringLiteral("copies"), copies},
                       {QStringLiteral("message"), message}};
    insertPath(result, QStringLiteral("project"), request.project);
    Invocation::printJson(QJsonDocument(result));
}

ExitStatus runShared(const Invocation& invocation, const Request& request, const QList<Provider>& targets,
                     HistoryStore& history) {
    // First, so that a signal during the start stops what has been started.
    Interrupts interrupts;
    SharedRun run(request.task, targets, request.project);
    QObject::connect(&interrupts, &Interrupts::interrupted, &run, &SharedRun::interrupt);
    const SharedRun::Outcome outcome = run.run(
        request.timeout, [&history](const TerminalSession& session) { history.record(snapshotOf(session)); });
    const bool allDone =
        std::ranges::all_of(run.sessions(), [](const auto& session) { return session->exitCode() == 0; });
    QString message;
    if (outcome == SharedRun::Outcome::Interrupted) message = QStringLiteral("Interrupted.");
    if (outcome == SharedRun::Outcome::TimedOut) message = QStringLiteral("The time limit has passed.");
    if (outcome == SharedRun::Outcome::Ended && !allDone)
        message = QStringLiteral("Not every assistant succeeded.");
    printResult(invocation, request, run, message);
    if (outcome == SharedRun::Outcome::Interrupted) return ExitStatus::Interrupted;
    return allDone ? ExitStatus::Done : ExitStatus::Failed;
}

ExitStatus run(const Invocation& invocation) {
    QString problem;
    const std::optional<Request> request = parse(invocation, problem);
    if (!request) return invocation.wrongUsage(problem);
    if (!invocation.isSet("shared")) {
        return invocation.failed(QStringLiteral(
            "Separate copies are not available yet. Use --shared to run in the project folder."));
    }
    if (!isFolder(request->project)) {
        return invocation.failed(
            QStringLiteral("The project folder \"%1\" is not available.").arg(request->project.display()));
    }

    StoredState state;
    Assistants& assistants = state.assistants();
    for (const Provider& connector : request->connectors)
        assistants.addTemporary(connector);

    QList<Provider> targets;
    for (const QString& id : chosenIds(invocation, *request, assistants)) {
        const Provider provider = assistants.provider(id);
        if (provider.id != id) {
            return invocation.wrongUsage(QStringLiteral("There is no connector \"%1\".").arg(id));
        }
        if (const auto why = refusal(assistants, provider, request->task)) return invocation.failed(*why);
        targets.append(provider);
    }
    if (targets.isEmpty())
        return invocation.failed(QStringLiteral("Select at least one installed assistant."));
    return runShared(invocation, *request, targets, state.history());
}

constexpr std::array options = {
    Option{"project", "DIR", "the project folder (the current folder)"},
    Option{"assistant", "ID", "a connector that works on the task (repeatable; those selected and ready)"},
    Option{"connector", "NAME=TEMPLATE",
           "a connector for this run only (repeatable); it joins the run unless --assistant is given"},
    Option{"shared", nullptr, "work in the project folder itself"},
    Option{"timeout", "SECONDS", "stop what still runs after this time"},
};

}  // namespace

const Verb runVerb = {
    "run",
    "TASK",
    "run a task on several assistants and wait for them",
    "Runs TASK on the assistants, each in a terminal of its own that nothing is typed into,\n"
    "and waits for all of them. A TASK of \"-\" is read from standard input; put \"--\" before\n"
    "one that begins with \"-\". Succeeds only when every assistant does.",
    options,
    run};

}  // namespace orvo::ctl
