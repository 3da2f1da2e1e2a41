#pragma once

#include "platform/FilePath.h"

#include <QDateTime>
#include <QList>
#include <QString>
#include <QUuid>

#include <optional>

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

}  // namespace orvo
