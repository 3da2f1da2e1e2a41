#pragma once

#include "history/HistoryEntry.h"

#include <QList>
#include <QObject>

namespace orvo {

class Preferences;

/// The latest 50 finished terminal sessions, newest first. Main thread only.
class HistoryStore : public QObject {
    Q_OBJECT

public:
    static constexpr int maximumEntries = 50;
    /// Characters (grapheme clusters) kept of a session's text, counted from its end.
    static constexpr int maximumCharacters = 60'000;

    explicit HistoryStore(Preferences* preferences, QObject* parent = nullptr);

    const QList<HistoryEntry>& entries() const;
    /// Puts a finished session in front, drops the 51st, saves.
    void record(const HistoryEntry& entry);
    /// Empties the list and the stored value.
    void clear();

Q_SIGNALS:
    void entriesChanged();
};

}  // namespace orvo
