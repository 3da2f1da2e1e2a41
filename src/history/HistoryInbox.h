#pragma once

#include "history/HistoryEntry.h"
#include "platform/Result.h"

#include <functional>

namespace orvo {

/// Where command-line runs leave their finished sessions for the window: a file of one JSON entry a line,
/// guarded by a lock on the file itself. Any number of processes may add at once. Stateless; any thread.
class HistoryInbox {
public:
    /// Bytes after which older entries make room: some dozen entries of the largest size.
    static constexpr qsizetype defaultCapacity = qsizetype{64} * 1024 * 1024;

    /// `file` need not exist.
    explicit HistoryInbox(FilePath file, qsizetype capacity = defaultCapacity)
        : m_file(std::move(file)), m_capacity(capacity) {}

    const FilePath& file() const { return m_file; }

    /// Adds `entry`; it is on the disk on return. Waits for the lock, at most five seconds (then
    /// EWOULDBLOCK). When the window has not been open for long, only the newest entries that history could
    /// hold stay.
    Result<void> append(const HistoryEntry& entry) const;

    /// What waits, oldest first, left where it is. A line that is no entry (yet) is passed over.
    QList<HistoryEntry> entries() const;

    /// Hands what waits to `keep`, oldest first, and empties the inbox once `keep` says that it is stored.
    /// Other processes wait meanwhile. Does not itself wait for the lock: the error is then EWOULDBLOCK.
    /// Lines that are no entries are put aside in "NAME.damaged".
    Result<void> take(const std::function<bool(const QList<HistoryEntry>&)>& keep) const;

private:
    FilePath m_file;
    qsizetype m_capacity;
};

}  // namespace orvo
