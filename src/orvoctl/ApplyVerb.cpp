#include "orvoctl/Console.h"
#include "orvoctl/Invocation.h"
#include "orvoctl/arguments.h"
#include "orvoctl/runAccess.h"
#include "platform/readFile.h"
#include "team_runs/Apply.h"
#include "team_runs/Changes.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonObject>
#include <QSet>

#include <algorithm>
#include <array>

namespace orvo::ctl {
namespace {

/// What is to be applied where.
struct Application {
    FilePath project;
    FilePath result;
    FilePath backup;
    QList<FileChange> changes;
};

tl::unexpected<Error> refuse(const QString& sentence, ExitStatus status = ExitStatus::Failed) {
    return failure(QStringLiteral("orvoctl"), sentence, static_cast<int>(status));
}

Result<QList<FileChange>> readChanges(const QString& argument) {
    constexpr qsizetype longest = 64 << 20;
    const FilePath file = Invocation::path(argument);
    const auto json = readFile(file, longest);
    if (!json) return tl::unexpected(json.error());
    const auto changes = decodeChanges(*json);
    if (!changes) return refuse(QStringLiteral("\"%1\" holds no list of changes.").arg(file.display()));
    return *changes;
}

Result<Application> onFolders(const Invocation& invocation) {
    for (const char* name : {"project", "result", "backup", "changes"}) {
        if (!invocation.isSet(name)) {
            return refuse(QStringLiteral("--%1 is missing.").arg(QLatin1String(name)),
                          ExitStatus::WrongUsage);
        }
    }
    const auto changes = readChanges(invocation.value("changes"));
    if (!changes) return tl::unexpected(changes.error());
    return Application{Invocation::path(invocation.value("project")),
                       Invocation::path(invocation.value("result")),
                       Invocation::path(invocation.value("backup")), *changes};
}

Result<Application> ofRun(const Invocation& invocation) {
    const auto reviewed = copyOf(invocation);
    if (!reviewed) return tl::unexpected(reviewed.error());
    const auto changes = RunFiles::changes(reviewed->run.baseline(), reviewed->copy.directory);
    if (!changes) return tl::unexpected(changes.error());
    return Application{reviewed->run.project, reviewed->copy.directory, reviewed->run.newBackupFolder(),
                       *changes};
}

// Keeps what --only names; every name must be one of the changes.
Result<void> narrow(const Invocation& invocation, QList<FileChange>& changes) {
    if (!invocation.isSet("only")) return {};
    QSet<QByteArray> wanted;
    for (const QString& path : invocation.values("only"))
        wanted.insert(bytesOfArgument(path));
    for (const QByteArray& path : wanted) {
        if (std::ranges::none_of(changes, [&](const FileChange& change) { return change.path == path; }))
            return refuse(
                QStringLiteral("\"%1\" is none of the changed files.").arg(QString::fromUtf8(path)));
    }
    changes.removeIf([&](const FileChange& change) { return !wanted.contains(change.path); });
    return {};
}

bool confirmed(const Application& application) {
    std::fprintf(stderr, "Project: %s\n", oneLine(application.project.display()).toUtf8().constData());
    for (const FileChange& change : application.changes) {
        std::fprintf(stderr, "%s: %s\n", textOf(change.kind()).toUtf8().constData(),
                     oneLine(change.displayPath()).toUtf8().constData());
    }
    std::fprintf(stderr,
                 "\nOriginal files are backed up inside this run. Conflicting changes are blocked.\n"
                 "Apply %lld reviewed files? [y/N] ",
                 static_cast<long long>(application.changes.size()));
    QFile input;
    if (!input.open(stdin, QIODevice::ReadOnly)) return false;
    const QByteArray answer = input.readLine().trimmed().toLower();
    return answer == "y" || answer == "yes";
}

void printJson(bool ok, const QString& message, const Application& application) {
    QJsonArray paths;
    QJsonArray exact;
    bool allText = true;
    for (const FileChange& change : ok ? application.changes : QList<FileChange>()) {
        paths.append(change.displayPath());
        exact.append(QString::fromLatin1(change.path.toBase64()));
        allText = allText && change.displayPath().toUtf8() == change.path;
    }
    QJsonObject document{
        {QStringLiteral("ok"), ok}, {QStringLiteral("message"), message}, {QStringLiteral("applied"), paths}};
    if (!allText) document[QStringLiteral("appliedBytes")] = exact;
    insertPath(document, QStringLiteral("backup"), application.backup);
    Invocation::printJson(QJsonDocument(document));
}

ExitStatus finish(const Invocation& invocation, const Application& application, const Result<void>& outcome) {
    const QString message =
        outcome ? QStringLiteral("Applied %1 files. Originals are saved in the run’s backup folder.")
                      .arg(application.changes.size())
                : outcome.error().message;
    if (invocation.format() == Invocation::Format::Json)
        printJson(outcome.has_value(), message, application);
    else if (outcome)
        print(message.toUtf8() + "\nBackup: " + oneLine(application.backup.display()).toUtf8() + '\n');
    else
        printError(message);
    return outcome ? ExitStatus::Done : ExitStatus::Failed;
}

ExitStatus apply(const Invocation& invocation) {
    const bool onExplicitFolders = invocation.isSet("project") || invocation.isSet("changes");
    const qsizetype wantedArguments = onExplicitFolders ? 0 : 2;
    if (invocation.positional().size() != wantedArguments) {
        return invocation.wrongUsage(
            QStringLiteral("Give RUN and COPY, or --project, --result, --backup and --changes."));
    }
    reportUnfinishedApplies();
    auto application = onExplicitFolders ? onFolders(invocation) : ofRun(invocation);
    if (!application) {
        return application.error().code == static_cast<int>(ExitStatus::WrongUsage) &&
                       application.error().domain == u"orvoctl"
                   ? invocation.wrongUsage(application.error().message)
                   : finish(invocation, {}, tl::unexpected(application.error()));
    }
    if (const auto narrowed = narrow(invocation, application->changes); !narrowed)
        return finish(invocation, *application, narrowed);
    if (application->changes.isEmpty())
        return finish(invocation, *application, refuse(QStringLiteral("There is nothing to apply.")));
    // Who names every folder has looked before; a run's files are asked about.
    if (!onExplicitFolders && !invocation.isSet("yes") && !confirmed(*application))
        return finish(invocation, *application, refuse(QStringLiteral("Nothing was applied.")));
    return finish(invocation, *application,
                  RunFiles::apply(application->changes, application->project, application->result,
                                  application->backup));
}

constexpr std::array options = {
    Option{"only", "PATH", "apply this file only (repeatable), named as \"review\" prints it"},
    Option{"yes", nullptr, "do not ask"},
    Option{"project", "P", "without RUN and COPY: the project folder"},
    Option{"result", "R", "without RUN and COPY: the folder with the new files"},
    Option{"backup", "B", "without RUN and COPY: where the originals go; must not exist yet"},
    Option{"changes", "FILE", "without RUN and COPY: the changes, as \"changes --json\" prints them"},
};

}  // namespace

const Verb applyVerb = {
    "apply",
    "[RUN COPY]",
    "take an assistant's changes over into the project",
    "Applies the changes of a copy to the project, all or none: everything is checked against\n"
    "the review first, the originals are backed up, and a failure puts back what was written.\n"
    "RUN is a run's id, a unique beginning of one, or \"latest\"; COPY is a connector's id or the\n"
    "copy's number from 1.",
    options,
    apply};

}  // namespace orvo::ctl
