#pragma once

#include "platform/FilePath.h"

#include <QFileSystemWatcher>
#include <QTimer>

namespace orvo {

/// Tells that something at certain paths has changed on the disk: once for all that happens within a moment,
/// so that a program which writes a thousand files does not cause as many looks. Main thread only.
class DiskWatch final : public QObject {
    Q_OBJECT

public:
    explicit DiskWatch(QObject* parent = nullptr);

    /// Watches these files and folders from now on, and no others. A file that was replaced must be named
    /// again. Paths that are not there, or not UTF-8, cannot be watched and are left out.
    void watch(const QList<FilePath>& paths);

Q_SIGNALS:
    void changed();

private:
    QFileSystemWatcher m_watcher;
    QTimer m_calm;
};

}  // namespace orvo
