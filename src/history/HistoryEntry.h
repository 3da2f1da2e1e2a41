#pragma once

#include "platform/FilePath.h"

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

/// A list of entries as stored: one JSON array without white space.
QByteArray encodeHistory(const QList<HistoryEntry>& entries);
/// Nothing unless `json` is an array of which every element is an entry.
std::optional<QList<HistoryEntry>> decodeHistory(const QByteArray& json);

}  // namespace orvo
