#pragma once

#include "platform/FilePath.h"
#include "platform/Result.h"

#include <QList>

namespace orvo {

/// Names of everything in `folder` as the system keeps them, hidden ones included, in no order.
Result<QList<QByteArray>> listFolder(const FilePath& folder);

/// What the folder itself says about one of its entries, without a look at the entry.
struct FolderItem {
    enum class Kind {
        Folder,
        /// A link, or an entry of a file system that does not say: to be looked at when it matters.
        Unknown,
        Other,
    };

    QByteArray name;
    Kind kind;
};

/// The same with what each is, for folders of many thousands, where looking at each would take its time.
Result<QList<FolderItem>> listFolderItems(const FilePath& folder);

}  // namespace orvo
