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

}  // namespace

Result<QList<QByteArray>> listFolder(const FilePath& folder) {
    const std::unique_ptr<DIR, FolderCloser> entries(opendir(folder.bytes().constData()));
    if (!entries) return systemFailure(errno, folder);
    QList<QByteArray> names;
    while (true) {
        errno = 0;
        const dirent* const entry = readdir(entries.get());
        if (entry == nullptr) break;
        const std::string_view name(entry->d_name);
        if (name != "." && name != "..") names.append(QByteArray(entry->d_name));
    }
    if (errno != 0) return systemFailure(errno, folder);
    return names;
}

}  // namespace orvo
