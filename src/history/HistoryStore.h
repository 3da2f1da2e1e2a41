#pragma once

#include "history/HistoryEntry.h"
#include "history/keptOutput.h"

#include <QList>
#include <QObject>

namespace orvo {

class HistoryInbox;
class Preferences;

/// The latest 50 finished terminal sessions, newest first. Main thread only.
class HistoryStore : public QObject {
    Q_OBJECT

public:
    /// What this process does with the inbox.
    enum class InboxRole {
        /// The window: takes over what command-line runs left, now and whenever more arrives.
        Merge,
        /// A command-line run: shows what waits there, and leaves its own finished sessions there instead of
        /// storing the list.
        Append,
    };

    static constexpr int maximumEntries = 50;
    /// Characters (grapheme clusters) kept of a session's text, counted from its end.
    static constexpr int maximumCharacters = maximumKeptCharacters;

    /// Reads the stored list; `preferences` outlives this object, null keeps the list in memory only. A
    /// stored value that is no list gives an empty history, and is kept aside when it is overwritten.
    explicit HistoryStore(Preferences* preferences, QObject* parent = nullptr);

    /// `inbox` outlives this object. Call once.
    void attachInbox(const HistoryInbox& inbox, InboxRole role);

    const QList<HistoryEntry>& entries() const { return m_entries; }
    /// Puts a finished session in front, drops the 51st, saves. The text is cut to what is kept.
    void record(const HistoryEntry& entry);
    /// Empties the list and the stored value.
    void clear();

Q_SIGNALS:
    void entriesChanged();

private:
    enum class Stored { Yes, No };
    enum class When { Now, Soon };

    void load();
    /// Soon leaves the disk to another thread, and what goes wrong to whoever gave us the preferences.
    Stored save(When when);
    bool putInFront(const QList<HistoryEntry>& oldestFirst);
    void watchInbox();
    void takeFromInbox();

    Preferences* m_preferences;
    const HistoryInbox* m_inbox = nullptr;
    InboxRole m_role = InboxRole::Merge;
    QList<HistoryEntry> m_entries;
    /// For each entry its stored form, empty until it is first saved: entries never change, and encoding all
    /// of them anew for each session that ends would take longer than everything else about it.
    QByteArrayList m_encoded;
};

}  // namespace orvo
