#include "history/HistoryStore.h"

#include "history/HistoryInbox.h"
#include "platform/AppFolders.h"
#include "platform/Preferences.h"

#include <QFileSystemWatcher>
#include <QTimer>

#include <algorithm>
#include <cerrno>
#include <chrono>

namespace orvo {
namespace {

// While another process holds the inbox; it does so for the time of one write.
constexpr std::chrono::milliseconds retryPause(200);

}  // namespace

HistoryStore::HistoryStore(Preferences* preferences, QObject* parent)
    : QObject(parent), m_preferences(preferences) {
    load();
}

void HistoryStore::load() {
    m_entries.clear();
    m_encoded.clear();
    if (m_preferences == nullptr) return;
    const std::optional<QByteArray> stored = m_preferences->value(preference::history);
    if (!stored) return;
    const std::optional<QList<HistoryEntry>> entries = decodeHistory(*stored);
    if (!entries) {
        m_preferences->markDamaged(preference::history);
        return;
    }
    m_entries = entries->first(std::min<qsizetype>(entries->size(), maximumEntries));
    m_encoded.resize(m_entries.size());
}

HistoryStore::Stored HistoryStore::save(When when) {
    if (m_preferences == nullptr || m_role == InboxRole::Append) return Stored::No;
    for (qsizetype i = 0; i < m_entries.size(); ++i) {
        if (m_encoded[i].isEmpty()) m_encoded[i] = encodeEntry(m_entries[i]);
    }
    // Whoever gave us the preferences learns of failures there; the list stays in memory.
    if (when == When::Soon) {
        m_preferences->setValueSoon(preference::history, encodeHistory(m_encoded));
        return Stored::Yes;
    }
    return m_preferences->setValue(preference::history, encodeHistory(m_encoded)) ? Stored::Yes : Stored::No;
}

bool HistoryStore::putInFront(const QList<HistoryEntry>& oldestFirst) {
    const QList<HistoryEntry> before = m_entries;
    for (const HistoryEntry& entry : oldestFirst) {
        // One that is there already came from an inbox that could not be emptied.
        const bool isThere = std::ranges::find(m_entries, entry.id, &HistoryEntry::id) != m_entries.end();
        if (isThere) continue;
        m_entries.prepend(entry);
        m_encoded.prepend(QByteArray());
    }
    m_entries.resize(std::min<qsizetype>(m_entries.size(), maximumEntries));
    m_encoded.resize(m_entries.size());
    return m_entries != before;
}

void HistoryStore::record(const HistoryEntry& entry) {
    HistoryEntry kept = entry;
    kept.output = keptOutput(entry.output);
    if (!putInFront({kept})) return;
    save(When::Soon);
    // The list shows the entry whether or not it could be left for the window.
    if (m_inbox != nullptr && m_role == InboxRole::Append) {
        [[maybe_unused]] const Result<void> left = m_inbox->append(kept);
    }
    Q_EMIT entriesChanged();
}

void HistoryStore::clear() {
    const bool changed = !m_entries.isEmpty();
    m_entries.clear();
    m_encoded.clear();
    save(When::Now);
    if (changed) Q_EMIT entriesChanged();
}

void HistoryStore::attachInbox(const HistoryInbox& inbox, InboxRole role) {
    m_inbox = &inbox;
    m_role = role;
    if (role == InboxRole::Merge) {
        watchInbox();
        takeFromInbox();
        return;
    }
    // The inbox first and then the list again: a window that moves an entry meanwhile stores the list before
    // it empties the inbox, so the entry is in one of them.
    const QList<HistoryEntry> waiting = inbox.entries();
    const QList<HistoryEntry> before = m_entries;
    load();
    putInFront(waiting);
    if (m_entries != before) Q_EMIT entriesChanged();
}

void HistoryStore::watchInbox() {
    const QString file = m_inbox->file().display();
    const FilePath folder = m_inbox->file().parent();
    // Only a folder that is there can be watched; without one nothing arrives before the next start.
    if (!createPrivateFolder(folder)) return;
    auto* const watcher = new QFileSystemWatcher({folder.display()}, this);
    const auto look = [this, watcher, file] {
        // The folder tells of a file that is new or replaced, the file of lines that are added.
        if (QFile::exists(file) && !watcher->files().contains(file)) watcher->addPath(file);
        takeFromInbox();
    };
    connect(watcher, &QFileSystemWatcher::directoryChanged, this, look);
    connect(watcher, &QFileSystemWatcher::fileChanged, this, look);
    if (QFile::exists(file)) watcher->addPath(file);
}

void HistoryStore::takeFromInbox() {
    bool changed = false;
    const Result<void> taken = m_inbox->take([&](const QList<HistoryEntry>& waiting) {
        changed = putInFront(waiting);
        return save(When::Now) == Stored::Yes;
    });
    if (!taken && taken.error().code == EWOULDBLOCK) {
        QTimer::singleShot(retryPause, this, &HistoryStore::takeFromInbox);
    }
    if (changed) Q_EMIT entriesChanged();
}

}  // namespace orvo
