#include "team_runs/FileMap.h"

#include "team_runs/folderAccess.h"
#include "team_runs/runError.h"

#include <QCoreApplication>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstddef>
#include <memory>
#include <string_view>

#include <dirent.h>
#include <fcntl.h>

namespace orvo::RunFiles {
namespace {

using namespace std::string_view_literals;

constexpr std::array excludedNames = {".git"sv,   ".svn"sv,   ".hg"sv,   "node_modules"sv, ".venv"sv,
                                      "venv"sv,   ".build"sv, "build"sv, "dist"sv,         ".next"sv,
                                      ".cache"sv, ".ssh"sv,   ".aws"sv,  ".gnupg"sv,       ".DS_Store"sv};
constexpr std::array bundleExtensions = {"app"sv, "framework"sv};

// As much as the library's own streams take at a time.
constexpr size_t entryBytes = 32 << 10;

/// Collects the files of one tree, a folder at a time, so that depth costs no descriptors.
class Walk {
public:
    Walk(int root, const std::stop_token& stop)
        : m_root(root), m_stop(stop), m_entries(std::make_unique_for_overwrite<std::byte[]>(entryBytes)) {}

    Result<FileMap> run() {
        m_folders.push_back({});
        while (!m_folders.empty()) {
            if (m_stop.stop_requested()) return stopped();
            const QByteArray folder = std::move(m_folders.back());
            m_folders.pop_back();
            if (const Result<void> read = readFolder(folder); !read)
                return tl::unexpected<Error>(read.error());
        }
        std::ranges::sort(m_map, {}, &MappedFile::path);
        return std::move(m_map);
    }

private:
    /// Asks the system for the entries itself: a stream costs each folder three more calls and a buffer.
    Result<void> readFolder(const QByteArray& path) {
        auto opened = openForReading(path);
        if (!opened) return pathFailure(path, opened.error());
        m_open = std::move(*opened);
        m_openPath = path;
        while (true) {
            const ssize_t filled = getdents64(m_open.number(), m_entries.get(), entryBytes);
            if (filled < 0) return pathFailure(path, errno);
            if (filled == 0) return {};
            for (ssize_t at = 0; at < filled;) {
                const auto* const entry = reinterpret_cast<const dirent64*>(m_entries.get() + at);
                at += entry->d_reclen;
                if (Result<void> taken = take(m_open.number(), path, *entry); !taken) return taken;
            }
        }
    }

    Result<void> take(int folder, const QByteArray& path, const dirent64& entry) {
        const QByteArray name(static_cast<const char*>(entry.d_name));
        if (name == "." || name == ".." || isExcluded(name)) return {};
        const QByteArray entryPath = path.isEmpty() ? name : path + '/' + name;
        if (entry.d_type == DT_DIR) {
            m_folders.push_back(entryPath);
        } else if (entry.d_type == DT_REG || entry.d_type == DT_UNKNOWN) {
            return add(folder, name, entryPath);
        }
        return {};
    }

    SystemResult<FileDescriptor> openForReading(const QByteArray& path) const {
        // The folder read last is mostly the one that holds this: one step instead of all of them.
        if (m_open.isOpen() && parentPath(path) == m_openPath)
            return openFolderBeneath(m_open.number(), fileName(path));
        if (!path.isEmpty()) return openFolderBeneath(m_root, path);
        // A descriptor of its own, with its own position: the root's may be shared.
        FileDescriptor own(openat(m_root, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
        if (!own.isOpen()) return tl::unexpected<int>(errno);
        return own;
    }

    Result<void> add(int folder, const QByteArray& name, const QByteArray& path) {
        struct stat status{};
        if (fstatat(folder, name.constData(), &status, AT_SYMLINK_NOFOLLOW) != 0)
            return pathFailure(path, errno);
        if (S_ISDIR(status.st_mode)) m_folders.push_back(path);
        if (!S_ISREG(status.st_mode)) return {};
        if (m_map.size() >= maximumFiles || status.st_size > maximumBytes - m_bytes)
            return refusal(overLimit());
        m_bytes += status.st_size;
        m_map.push_back({path, status.st_size, permissionsOf(status)});
        return {};
    }

    int m_root;
    std::stop_token m_stop;
    std::unique_ptr<std::byte[]> m_entries;
    std::vector<QByteArray> m_folders;
    FileDescriptor m_open;
    QByteArray m_openPath;
    FileMap m_map;
    qint64 m_bytes = 0;
};

}  // namespace

bool isExcluded(const QByteArray& name) {
    const std::string_view text(name.constData(), static_cast<size_t>(name.size()));
    if (std::ranges::find(excludedNames, text) != excludedNames.end() || text == ".env") return true;
    if (text.starts_with(".env.")) return text != ".env.example" && text != ".env.sample";
    const size_t dot = text.rfind('.');
    // A name that only begins with a dot has no extension.
    if (dot == std::string_view::npos || dot == 0) return false;
    return std::ranges::find(bundleExtensions, text.substr(dot + 1)) != bundleExtensions.end();
}

Result<FileMap> files(const FilePath& root, const std::stop_token& stop) {
    const auto folder = openRoot(root);
    if (folder) return files(folder->number(), stop);
    if (folder.error() == ENOENT || folder.error() == ENOTDIR) return refusal(folderMissing());
    return refusal(QCoreApplication::translate("RunFiles", "This project folder cannot be read."));
}

Result<FileMap> files(int root, const std::stop_token& stop) {
    return Walk(root, stop).run();
}

}  // namespace orvo::RunFiles
