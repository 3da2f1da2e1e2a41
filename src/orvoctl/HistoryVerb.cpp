#include "assistants/Assistants.h"
#include "history/HistoryStore.h"
#include "orvoctl/Console.h"
#include "orvoctl/Invocation.h"
#include "orvoctl/StoredState.h"

#include <QJsonArray>
#include <QJsonObject>

#include <algorithm>

namespace orvo::ctl {
namespace {

QString idOf(const HistoryEntry& entry) {
    return entry.id.toString(QUuid::WithoutBraces).toUpper();
}

/// The entries whose id begins with `beginning`, in any case.
QList<HistoryEntry> entriesWithId(const QList<HistoryEntry>& entries, const QString& beginning) {
    QList<HistoryEntry> found;
    std::ranges::copy_if(entries, std::back_inserter(found), [&](const HistoryEntry& entry) {
        return idOf(entry).startsWith(beginning, Qt::CaseInsensitive);
    });
    return found;
}

void printList(const QList<HistoryEntry>& entries, const Assistants& assistants) {
    QList<QStringList> rows;
    for (const HistoryEntry& entry : entries) {
        // As it is named now; a connector that is gone has only its id.
        const Provider provider = assistants.provider(entry.provider);
        const QString name = provider.id == entry.provider ? provider.shownName() : entry.provider;
        rows.append({idOf(entry), entry.started.toLocalTime().toString(QStringLiteral("yyyy-MM-dd HH:mm")),
                     QStringLiteral("exit %1").arg(entry.exitCode), oneLine(name), oneLine(entry.title)});
    }
    print(columns(rows));
}

ExitStatus printEntry(const Invocation& invocation, const QList<HistoryEntry>& entries, const QString& id) {
    const QList<HistoryEntry> found = entriesWithId(entries, id);
    if (found.size() != 1) {
        return invocation.failed(found.isEmpty()
                                     ? QStringLiteral("No recorded session has the id \"%1\".").arg(id)
                                     : QStringLiteral("More than one id begins with \"%1\".").arg(id));
    }
    if (invocation.format() == Invocation::Format::Json) {
        Invocation::printJson(QJsonDocument(toJson(found.first())));
    } else {
        print(found.first().output.toUtf8() + '\n');
    }
    return ExitStatus::Done;
}

ExitStatus history(const Invocation& invocation) {
    if (invocation.positional().size() > 1)
        return invocation.wrongUsage(QStringLiteral("Give at most one ID."));
    const StoredState state;
    const QList<HistoryEntry>& entries = state.history().entries();
    const QString id = invocation.positional().value(0);
    if (!id.isEmpty()) return printEntry(invocation, entries, id);
    if (invocation.format() == Invocation::Format::Json) {
        QJsonArray list;
        for (const HistoryEntry& entry : entries)
            list.append(toJson(entry));
        Invocation::printJson(QJsonDocument(list));
    } else {
        printList(entries, state.assistants());
    }
    return ExitStatus::Done;
}

}  // namespace

const Verb historyVerb = {
    "history",
    "[ID]",
    "list finished sessions, or print the text of one",
    "Lists the finished sessions that are kept, newest first. With an ID, or the beginning of\n"
    "one, prints the text of that session.",
    {},
    history};

}  // namespace orvo::ctl
