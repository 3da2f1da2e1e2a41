#pragma once

#include "platform/FilePath.h"

#include <QByteArrayList>
#include <QDateTime>
#include <QList>
#include <QString>
#include <QUuid>

#include <optional>

class QJsonObject;

namespace orvo {

/// Snapshot of one finished terminal session. A value; identified by `id`.
struct HistoryEntry {
    QUuid id;
    QString provider;
    QString title;
    FilePath directory;
    QDateTime started;
    int exitCode = -1;
    QString output;

    bool operator==(const HistoryEntry&) const = default;
};

/// The stored form of one entry, as docs/formats/history.md tells it.
QJsonObject toJson(const HistoryEntry& entry);
/// Nothing when a key is missing or holds something else than it must.
std::optional<HistoryEntry> historyEntryFromJson(const QJsonObject& object);

/// One entry as stored, without white space.
QByteArray encodeEntry(const HistoryEntry& entry);
/// A list as stored, from its encoded entries: one JSON array without white space.
QByteArray encodeHistory(const QByteArrayList& encodedEntries);
/// Nothing unless `json` is an array of which every element is an entry.
std::optional<QList<HistoryEntry>> decodeHistory(const QByteArray& json);

}  // namespace orvo
