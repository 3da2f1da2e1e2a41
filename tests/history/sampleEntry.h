#pragma once

#include "history/HistoryEntry.h"

namespace orvo::test {

inline HistoryEntry sampleEntry(const QString& title, const QString& output = QStringLiteral("done")) {
    return {.id = QUuid::createUuid(),
            .provider = QStringLiteral("codex"),
            .title = title,
            .directory = FilePath("/home/a/project"),
            .started = QDateTime(QDate(2026, 3, 4), QTime(5, 6, 7, 89), Qt::UTC),
            .exitCode = 0,
            .output = output};
}

inline QString titlesOf(const QList<HistoryEntry>& entries) {
    QStringList titles;
    for (const HistoryEntry& entry : entries)
        titles.append(entry.title);
    return titles.join(u' ');
}

}  // namespace orvo::test
