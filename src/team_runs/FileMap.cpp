#include "team_runs/FileMap.h"

#include "team_runs/folderAccess.h"
#include "team_runs/runError.h"

#include <QCoreApplication>

#include <algorithm>
#include <array>
#include <cerrno>
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

struct FolderCloser {
    void operator()(DIR* folder) const { closedir(folder); }
};
using FolderStream = std::unique_ptr<DIR, FolderCloser>;

/// Collects the files of one tree, a folder at a time, so that depth costs no descriptors.
class Walk {
public:
    Walk(int root, const std::stop_token& stop) : m_root(root), m_stop(stop) {}

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
    Result<void> readFolder(const QByteArray& path) {
        const FolderStream stream = openStream(path);
        if (!stream) return pathFailure(path, errno);
        while (true) {
            errno = 0;
            const dirent* const entry = readdir(stream.get());
            if (entry == nullptr) break;
            const QByteArray name(entry->d_name);
            if (name == "." || name == ".." || isExcluded(name)) continue;
            const QByteArray entryPath = path.isEmpty() ? name : path + '/' + name;
            if (entry->d_type == DT_DIR) {
                m_folders.push_back(entryPath);
            } else if (entry->d_type == DT_REG || entry->d_type == DT_UNKNOWN) {
                if (Result<void> added = add(dirfd(stream.get()), name, entryPath); !added) return added;
            }
        }
        if (errno != 0) return pathFailure(path, errno);
        return {};
    }

    FolderStream openStream(const QByteArray& path) const {
        auto folder = openFolderBeneath(m_root, path);
        if (!folder) {
            errno = folder.error();
            return nullptr;
        }
        // A descriptor of its own, with its own position: the root's may be shared.
        const int own = openat(folder->number(), ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        if (own < 0) return nullptr;
        return FolderStream(fdopendir(own));
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
    std::vector<QByteArray> m_folders;
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
