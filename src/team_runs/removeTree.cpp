#include "team_runs/removeTree.h"

#include <QList>

#include <cerrno>
#include <memory>

#include <dirent.h>
#include <fcntl.h>

namespace orvo {
namespace {

// Folders below are first moved to the top, so that no depth exhausts the descriptors.
constexpr int maximumDepth = 64;

SystemResult<QList<QByteArray>> namesIn(int folder) {
    const int own = openat(folder, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (own < 0) return tl::unexpected<int>(errno);
    const std::unique_ptr<DIR, int (*)(DIR*)> stream(fdopendir(own), &closedir);
    if (!stream) return tl::unexpected<int>(errno);
    QList<QByteArray> names;
    errno = 0;
    while (const dirent* const entry = readdir(stream.get())) {
        const QByteArray name(entry->d_name);
        if (name != "." && name != "..") names.append(name);
        errno = 0;
    }
    if (errno != 0) return tl::unexpected<int>(errno);
    return names;
}

class Removal {
public:
    Removal(int top, QByteArray last, const std::stop_token& stop)
        : m_top(top), m_last(std::move(last)), m_stop(stop) {}

    SystemResult<void> run() {
        do {
            m_moved = 0;
            if (auto emptied = empty(m_top, 0); !emptied) return emptied;
        } while (m_moved > 0);
        if (!m_last.isEmpty() && unlinkat(m_top, m_last.constData(), 0) != 0 && errno != ENOENT) {
            return tl::unexpected<int>(errno);
        }
        return {};
    }

private:
    SystemResult<void> empty(int folder, int depth) {
        const auto names = namesIn(folder);
        if (!names) return tl::unexpected<int>(names.error());
        for (const QByteArray& name : *names) {
            if (m_stop.stop_requested()) return tl::unexpected<int>(ECANCELED);
            if (depth == 0 && name == m_last) continue;
            if (auto removed = remove(folder, name, depth); !removed) return removed;
        }
        return {};
    }

    SystemResult<void> remove(int folder, const QByteArray& name, int depth) {
        if (unlinkat(folder, name.constData(), 0) == 0 || errno == ENOENT) return {};
        if (errno != EISDIR && errno != EPERM) return tl::unexpected<int>(errno);
        if (depth >= maximumDepth) {
            const QByteArray moved = ".orvo-deep-" + QByteArray::number(m_names++);
            if (renameat(folder, name.constData(), m_top, moved.constData()) != 0)
                return tl::unexpected<int>(errno);
            ++m_moved;
            return {};
        }
        {
            const FileDescriptor child(
                openat(folder, name.constData(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
            if (!child.isOpen()) return tl::unexpected<int>(errno);
            if (auto emptied = empty(child.number(), depth + 1); !emptied) return emptied;
        }
        if (unlinkat(folder, name.constData(), AT_REMOVEDIR) != 0) return tl::unexpected<int>(errno);
        return {};
    }

    int m_top;
    QByteArray m_last;
    const std::stop_token& m_stop;
    int m_moved = 0;
    int m_names = 0;
};

}  // namespace

SystemResult<void> removeTree(const FilePath& folder, const QByteArray& last, const std::stop_token& stop) {
    const FileDescriptor top(
        open(folder.bytes().constData(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    if (!top.isOpen()) return tl::unexpected<int>(errno);
    if (auto removed = Removal(top.number(), last, stop).run(); !removed) return removed;
    if (unlinkat(AT_FDCWD, folder.bytes().constData(), AT_REMOVEDIR) != 0) return tl::unexpected<int>(errno);
    return {};
}

}  // namespace orvo
