#include "orvoctl/Console.h"
#include "orvoctl/Invocation.h"
#include "orvoctl/runAccess.h"
#include "orvoctl/unifiedDiff.h"
#include "team_runs/Changes.h"

#include <QJsonArray>
#include <QJsonObject>

#include <unistd.h>

#include <array>

namespace orvo::ctl {
namespace {

QList<QStringList> rowsOf(const QList<FileChange>& changes) {
    QList<QStringList> rows;
    for (const FileChange& change : changes) {
        QString mode;
        if (change.beforeMode && change.afterMode && *change.beforeMode != *change.afterMode) {
            mode = QStringLiteral("mode %1 -> %2")
                       .arg(QString::number(*change.beforeMode, 8), QString::number(*change.afterMode, 8));
        }
        rows.append({textOf(change.kind()), oneLine(change.displayPath()), mode});
    }
    return rows;
}

Result<QByteArray> diffOf(const QList<FileChange>& changes, const FilePath& baseline,
                          const FilePath& result) {
    QByteArray text;
    for (const FileChange& change : changes) {
        const auto diff = unifiedDiff(change, baseline, result);
        if (!diff) return diff;
        text += *diff;
    }
    return text;
}

ExitStatus printDiff(const Invocation& invocation, const QList<FileChange>& changes, const FilePath& baseline,
                     const FilePath& result) {
    const auto diff = diffOf(changes, baseline, result);
    if (!diff) return invocation.failed(diff.error().message);
    if (isatty(STDOUT_FILENO) == 1)
        print(shownOnTerminal(*diff, wantsColor(STDOUT_FILENO) ? DiffColor::ByLine : DiffColor::None));
    else
        print(*diff);
    return ExitStatus::Done;
}

ExitStatus printChanges(const Invocation& invocation, const FilePath& baseline, const FilePath& result) {
    const auto changes = RunFiles::changes(baseline, result);
    if (!changes) return invocation.failed(changes.error().message);
    if (invocation.isSet("diff") && invocation.format() == Invocation::Format::Text)
        return printDiff(invocation, *changes, baseline, result);
    if (invocation.format() == Invocation::Format::Text) {
        print(changes->isEmpty() ? QByteArray("No file changes.\n") : columns(rowsOf(*changes)));
        return ExitStatus::Done;
    }
    QJsonArray list;
    for (const FileChange& change : *changes) {
        QJsonObject object = jsonOf(change);
        if (invocation.isSet("diff")) {
            const auto diff = unifiedDiff(change, baseline, result);
            if (!diff) return invocation.failed(diff.error().message);
            object[QStringLiteral("diff")] = QString::fromUtf8(*diff);
        }
        list.append(object);
    }
    Invocation::printJson(QJsonDocument(list));
    return ExitStatus::Done;
}

// All copies one after the other, each under its name.
ExitStatus reviewAll(const Invocation& invocation, const TeamRun& run) {
    if (invocation.format() == Invocation::Format::Json && run.copies.size() != 1)
        return invocation.wrongUsage(QStringLiteral("With --json, name the COPY to review."));
    ExitStatus status = ExitStatus::Done;
    for (qsizetype i = 0; i < run.copies.size(); ++i) {
        if (invocation.format() == Invocation::Format::Text) {
            print((i > 0 ? "\n" : "") + QByteArray::number(i + 1) + ". " +
                  oneLine(run.copies[i].provider).toUtf8() + '\n');
        }
        const ExitStatus printed = printChanges(invocation, run.baseline(), run.copies[i].directory);
        if (printed != ExitStatus::Done) status = printed;
    }
    return status;
}

ExitStatus review(const Invocation& invocation) {
    const qsizetype count = invocation.positional().size();
    if (count < 1 || count > 2)
        return invocation.wrongUsage(QStringLiteral("Give RUN, and a COPY if you like."));
    reportUnfinishedApplies();
    if (count == 1) {
        const auto run = runOf(invocation);
        return run ? reviewAll(invocation, *run) : invocation.failed(run.error().message);
    }
    const auto reviewed = copyOf(invocation);
    if (!reviewed) return invocation.failed(reviewed.error().message);
    return printChanges(invocation, reviewed->run.baseline(), reviewed->copy.directory);
}

ExitStatus changes(const Invocation& invocation) {
    if (invocation.positional().size() != 2)
        return invocation.wrongUsage(QStringLiteral("Give BASELINE and RESULT."));
    return printChanges(invocation, Invocation::path(invocation.positional()[0]),
                        Invocation::path(invocation.positional()[1]));
}

constexpr std::array diffOption = {
    Option{"diff", nullptr, "show what changed in the files, as a unified diff"}};

}  // namespace

const Verb reviewVerb = {
    "review",
    "RUN [COPY]",
    "show what the assistants changed",
    "Lists the changed files of a copy against the run's baseline; of all copies when none is\n"
    "named. RUN is a run's id, a unique beginning of one, or \"latest\"; COPY is a connector's id\n"
    "or the copy's number from 1.",
    diffOption,
    review};

const Verb changesVerb = {
    "changes",
    "BASELINE RESULT",
    "show the changed files between two folders",
    "Lists the changed files of the folder RESULT against the folder BASELINE, by the rules\n"
    "of team runs. With --json in the form that \"apply --changes\" reads.",
    diffOption,
    changes};

}  // namespace orvo::ctl
