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

// Folders of one walk that are open at a time: depth costs no more descriptors than these.
constexpr size_t maximumOpen = 16;

QByteArray joined(const QByteArray& folder, QByteArrayView name) {
    QByteArray path;
    path.reserve(folder.size() + 1 + name.size());
    path.append(folder);
    if (!folder.isEmpty()) path.append('/');
    path.append(name);
    return path;
}

/// Collects the files of one tree, depth first, opening each folder from the one that holds it.
class Walk {
public:
    Walk(int root, const std::stop_token& stop)
        : m_root(root), m_stop(stop), m_entries(std::make_unique_for_overwrite<std::byte[]>(entryBytes)) {}

    Result<FileMap> run() {
        // A descriptor of its own, with its own position: the root's may be shared.
        FileDescriptor own(openat(m_root, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
        if (!own.isOpen()) return pathFailure({}, errno);
        m_levels.push_back({std::move(own), {}, {}});
        if (const Result<void> read = readFolder(); !read) return tl::unexpected<Error>(read.error());
        while (!m_levels.empty()) {
            if (m_stop.stop_requested()) return stopped();
            if (m_levels.back().folders.empty()) {
                m_levels.pop_back();
            } else if (const Result<void> read = descend(); !read) {
                return tl::unexpected<Error>(read.error());
            }
        }
        std::ranges::sort(m_map, {}, &MappedFile::path);
        return std::move(m_map);
    }

private:
    /// A folder on the way to the one that is read.
    struct Level {
        // Closed when too many deeper ones are open.
        FileDescriptor folder;
        QByteArray path;
        // Names of the folders in it that are still to be read.
        std::vector<QByteArray> folders;
    };

    Result<void> descend() {
        Level& parent = m_levels.back();
        const QByteArray name = std::move(parent.folders.back());
        parent.folders.pop_back();
        QByteArray path = joined(parent.path, name);
        if (!parent.folder.isOpen()) {
            auto again = openFolderBeneath(m_root, parent.path);
            if (!again) return pathFailure(parent.path, again.error());
            parent.folder = std::move(*again);
        }
        auto opened = openFolderBeneath(parent.folder.number(), name);
        if (!opened) return pathFailure(path, opened.error());
        if (parent.folders.empty()) m_levels.pop_back();
        m_levels.push_back({std::move(*opened), std::move(path), {}});
        if (m_levels.size() > maximumOpen) m_levels[m_levels.size() - 1 - maximumOpen].folder = {};
        return readFolder();
    }

    /// Asks the system for the entries itself: a stream costs each folder three more calls and a buffer.
    Result<void> readFolder() {
        Level& level = m_levels.back();
        while (true) {
            const ssize_t filled = getdents64(level.folder.number(), m_entries.get(), entryBytes);
            if (filled < 0) return pathFailure(level.path, errno);
            if (filled == 0) return {};
            for (ssize_t at = 0; at < filled;) {
                const auto* const entry = reinterpret_cast<const dirent64*>(m_entries.get() + at);
                at += entry->d_reclen;
                if (Result<void> taken = take(level, *entry); !taken) return taken;
            }
        }
    }

    Result<void> take(Level& level, const dirent64& entry) {
        const QByteArrayView name(static_cast<const char*>(entry.d_name));
        if (name == "." || name == ".." || isExcluded(name)) return {};
        if (entry.d_type == DT_DIR) {
            level.folders.push_back(name.toByteArray());
        } else if (entry.d_type == DT_REG || entry.d_type == DT_UNKNOWN) {
            return add(level, name);
        }
        return {};
    }

    Result<void> add(Level& level, QByteArrayView name) {
        QByteArray path = joined(level.path, name);
        struct stat status{};
        if (fstatat(level.folder.number(), name.data(), &status, AT_SYMLINK_NOFOLLOW) != 0)
            return pathFailure(path, errno);
        if (S_ISDIR(status.st_mode)) level.folders.push_back(name.toByteArray());
        if (!S_ISREG(status.st_mode)) return {};
        if (m_map.size() >= maximumFiles || status.st_size > maximumBytes - m_bytes)
            return refusal(overLimit());
        m_bytes += status.st_size;
        m_map.push_back({std::move(path), status.st_size, permissionsOf(status)});
        return {};
    }

    int m_root;
    std::stop_token m_stop;
    std::unique_ptr<std::byte[]> m_entries;
    std::vector<Level> m_levels;
    FileMap m_map;
    qint64 m_bytes = 0;
};

}  // namespace

bool isExcluded(QByteArrayView name) {
    const std::string_view text(name.data(), static_cast<size_t>(name.size()));
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
