#include "platform/listFolder.h"

#include "platform/systemError.h"

#include <cerrno>
#include <memory>
#include <string_view>

#include <dirent.h>

namespace orvo {
namespace {

struct FolderCloser {
    void operator()(DIR* folder) const { closedir(folder); }
};

FolderItem::Kind kindOf(const dirent& entry) {
    switch (entry.d_type) {
        case DT_DIR:
            return FolderItem::Kind::Folder;
        case DT_LNK:
        case DT_UNKNOWN:
            return FolderItem::Kind::Unknown;
        default:
            return FolderItem::Kind::Other;
    }
}

/// Calls `visit` for everything in the folder but itself and its parent.
template <class Visit>
Result<void> visitFolder(const FilePath& folder, Visit visit) {
    const std::unique_ptr<DIR, FolderCloser> entries(opendir(folder.bytes().constData()));
    if (!entries) return systemFailure(errno, folder);
    while (true) {
        errno = 0;
        const dirent* const entry = readdir(entries.get());
        if (entry == nullptr) break;
        const std::string_view name(entry->d_name);
        if (name != "." && name != "..") visit(*entry);
    }
    if (errno != 0) return systemFailure(errno, folder);
    return {};
}

}  // namespace

Result<QList<QByteArray>> listFolder(const FilePath& folder) {
    QList<QByteArray> names;
    const auto visited = visitFolder(folder, [&](const dirent& entry) { names.append(entry.d_name); });
    if (!visited) return tl::unexpected<Error>(visited.error());
    return names;
}

Result<QList<FolderItem>> listFolderItems(const FilePath& folder) {
    QList<FolderItem> items;
    const auto visited =
        visitFolder(folder, [&](const dirent& entry) { items.append({entry.d_name, kindOf(entry)}); });
    if (!visited) return tl::unexpected<Error>(visited.error());
    return items;
}

}  // namespace orvo
