#include "files/DiskWatch.h"

#include <chrono>

namespace orvo {
namespace {

using namespace std::chrono_literals;

// Short enough to seem at once, long enough for a program's burst of changes.
constexpr auto moment = 100ms;

}  // namespace

DiskWatch::DiskWatch(QObject* parent) : QObject(parent) {
    m_calm.setSingleShot(true);
    m_calm.setInterval(moment);
    connect(&m_calm, &QTimer::timeout, this, &DiskWatch::changed);
    const auto begin = [this] {
        if (!m_calm.isActive()) m_calm.start();
    };
    connect(&m_watcher, &QFileSystemWatcher::fileChanged, this, begin);
    connect(&m_watcher, &QFileSystemWatcher::directoryChanged, this, begin);
}

void DiskWatch::watch(const QList<FilePath>& paths) {
    QStringList wanted;
    for (const FilePath& path : paths) {
        const QString text = path.display();
        if (!text.isEmpty() && text.toUtf8() == path.bytes() && !wanted.contains(text)) wanted.append(text);
    }
    QStringList unwanted = m_watcher.files() + m_watcher.directories();
    QStringList missing = wanted;
    for (const QString& path : std::as_const(wanted))
        unwanted.removeAll(path);
    for (const QString& path : m_watcher.files() + m_watcher.directories())
        missing.removeAll(path);
    if (!unwanted.isEmpty()) m_watcher.removePaths(unwanted);
    if (!missing.isEmpty()) m_watcher.addPaths(missing);
}

}  // namespace orvo
