// The pieces of a team run on explicit folders: for scripts, and for looking at one piece alone.

#include "orvoctl/Console.h"
#include "orvoctl/Invocation.h"
#include "team_runs/Snapshot.h"

#include <QJsonArray>
#include <QJsonObject>

namespace orvo::ctl {
namespace {

ExitStatus snapshot(const Invocation& invocation) {
    if (invocation.positional().size() != 2)
        return invocation.wrongUsage(QStringLiteral("Give PROJECT and DEST."));
    const auto summary = RunFiles::snapshot(Invocation::path(invocation.positional()[0]),
                                            {Invocation::path(invocation.positional()[1])});
    if (!summary) return invocation.failed(summary.error().message);
    if (invocation.format() == Invocation::Format::Json) {
        Invocation::printJson(QJsonDocument(QJsonObject{{QStringLiteral("ok"), true},
                                                        {QStringLiteral("message"), QString()},
                                                        {QStringLiteral("files"), summary->files},
                                                        {QStringLiteral("bytes"), summary->bytes}}));
    } else {
        print("Copied " + QByteArray::number(summary->files) + " files, " +
              QByteArray::number(summary->bytes) + " bytes.\n");
    }
    return ExitStatus::Done;
}

ExitStatus copies(const Invocation& invocation) {
    const QStringList& arguments = invocation.positional();
    constexpr int most = 8;
    bool isNumber = false;
    const int count = arguments.value(1).toInt(&isNumber);
    if (arguments.size() != 3 || !isNumber || count < 1 || count > most)
        return invocation.wrongUsage(QStringLiteral("Give BASELINE, a number from 1 to 8, and DESTROOT."));
    const auto made = RunFiles::copies(Invocation::path(arguments[0]), count, Invocation::path(arguments[2]));
    if (!made) return invocation.failed(made.error().message);
    QJsonArray list;
    QJsonArray exact;
    bool allText = true;
    for (const FilePath& copy : *made) {
        list.append(copy.display());
        exact.append(QString::fromLatin1(copy.bytes().toBase64()));
        allText = allText && copy.display().toUtf8() == copy.bytes();
        if (invocation.format() == Invocation::Format::Text) print(copy.bytes() + '\n');
    }
    if (invocation.format() == Invocation::Format::Json) {
        QJsonObject document{{QStringLiteral("ok"), true},
                             {QStringLiteral("message"), QString()},
                             {QStringLiteral("copies"), list}};
        if (!allText) document[QStringLiteral("copiesBytes")] = exact;
        Invocation::printJson(QJsonDocument(document));
    }
    return ExitStatus::Done;
}

}  // namespace

const Verb snapshotVerb = {
    "snapshot",
    "PROJECT DEST",
    "copy a project as a run's baseline is copied",
    "Copies the files of PROJECT that take part in team runs into the new folder DEST.",
    {},
    snapshot};

const Verb copiesVerb = {"copies",
                         "BASELINE N DESTROOT",
                         "make the copies of a run",
                         "Makes N copies of BASELINE in DESTROOT, in folders named as in a run.",
                         {},
                         copies};

}  // namespace orvo::ctl
