#include "team_runs/HeldFolders.h"

#include <cerrno>

#include <fcntl.h>

namespace orvo::RunFiles {
namespace {

// A process may usually open 1,024 files; sessions and windows need theirs.
constexpr size_t maximumOpen = 256;

int synchroniseFolder(int folder) {
    // EINVAL: a file system that has no way to synchronise folders.
    return fsync(folder) == 0 || errno == EINVAL ? 0 : errno;
}

}  // namespace

SystemResult<int> HeldFolders::open(const QByteArray& path) {
    if (path.isEmpty()) return m_root;
    const auto known = m_folders.find(path);
    if (known != m_folders.end() && known->second.descriptor.isOpen()) {
        known->second.lastUse = ++m_uses;
        return known->second.descriptor.number();
    }
    auto folder = openFolderBeneath(m_root, path);
    if (!folder) return tl::unexpected<int>(folder.error());
    if (known != m_folders.end()) {
        struct stat status{};
        if (fstat(folder->number(), &status) != 0) return tl::unexpected<int>(errno);
        const Held& held = known->second;
        if (status.st_dev != held.device || status.st_ino != held.inode) return tl::unexpected<int>(ESTALE);
    }
    return hold(path, std::move(*folder));
}

SystemResult<int> HeldFolders::confirmed(const QByteArray& path) {
    const auto folder = open(path);
    if (!folder || path.isEmpty()) return folder;
    const auto now = openFolderBeneath(m_root, path);
    if (!now) return tl::unexpected<int>(now.error());
    struct stat status{};
    if (fstat(now->number(), &status) != 0) return tl::unexpected<int>(errno);
    const Held& held = m_folders.at(path);
    if (status.st_dev != held.device || status.st_ino != held.inode) return tl::unexpected<int>(ESTALE);
    return folder;
}

SystemResult<int> HeldFolders::hold(const QByteArray& path, FileDescriptor folder) {
    struct stat status{};
    if (fstat(folder.number(), &status) != 0) return tl::unexpected<int>(errno);
    if (m_open >= maximumOpen) closeOldest();
    Held& held = m_folders[path];
    if (!held.descriptor.isOpen()) ++m_open;
    held = Held{std::move(folder), status.st_dev, status.st_ino, ++m_uses};
    return held.descriptor.number();
}

void HeldFolders::closeOldest() {
    Held* oldest = nullptr;
    for (auto& [path, held] : m_folders) {
        if (held.descriptor.isOpen() && (oldest == nullptr || held.lastUse < oldest->lastUse)) oldest = &held;
    }
    if (oldest == nullptr) return;
    oldest->descriptor = FileDescriptor();
    --m_open;
}

SystemResult<int> HeldFolders::make(const QByteArray& path, QList<QByteArray>& created) {
    const auto existing = deepestFolder(m_root, path);
    if (!existing) return tl::unexpected<int>(existing.error());
    auto current = confirmed(*existing);
    QByteArray reached = *existing;
    const QByteArray missing = path.mid(existing->isEmpty() ? 0 : existing->size() + 1);
    if (missing.isEmpty()) return current;
    for (const QByteArray& name : missing.split('/')) {
        if (!current) return current;
        if (mkdirat(*current, name.constData(), 0777) == 0) {
            created.append(reached.isEmpty() ? name : reached + '/' + name);
        } else if (errno != EEXIST) {
            return tl::unexpected<int>(errno);
        }
        reached = reached.isEmpty() ? name : reached + '/' + name;
        auto child = openFolderBeneath(*current, name);
        if (!child) return tl::unexpected<int>(child.error());
        // A folder that was here under this path before is gone; the new one takes its name.
        current = hold(reached, std::move(*child));
    }
    return current;
}

SystemResult<void> HeldFolders::unmake(const QByteArray& path) {
    const auto parent = open(parentPath(path));
    if (!parent) return tl::unexpected<int>(parent.error());
    if (unlinkat(*parent, fileName(path).constData(), AT_REMOVEDIR) != 0) return tl::unexpected<int>(errno);
    const auto held = m_folders.find(path);
    if (held == m_folders.end()) return {};
    if (held->second.descriptor.isOpen()) --m_open;
    m_folders.erase(held);
    return {};
}

SystemResult<void> HeldFolders::synchronise() {
    if (const int code = synchroniseFolder(m_root); code != 0) return tl::unexpected<int>(code);
    QList<QByteArray> paths;
    for (const auto& [path, held] : m_folders)
        paths.append(path);
    for (const QByteArray& path : paths) {
        const auto folder = open(path);
        if (!folder) return tl::unexpected<int>(folder.error());
        if (const int code = synchroniseFolder(*folder); code != 0) return tl::unexpected<int>(code);
    }
    return {};
}

SystemResult<QByteArray> deepestFolder(int root, QByteArray path) {
    while (!path.isEmpty()) {
        const auto folder = openFolderBeneath(root, path);
        if (folder) return path;
        if (folder.error() != ENOENT && folder.error() != ENOTDIR) return tl::unexpected<int>(folder.error());
        path = parentPath(path);
    }
    return path;
}

}  // namespace orvo::RunFiles
