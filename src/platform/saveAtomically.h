#pragma once

#include "platform/FilePath.h"
#include "platform/Result.h"

#include <QByteArrayView>

namespace orvo {

struct SaveOptions {
    /// What happens when a symbolic link stands at the place to save to.
    enum class Link {
        Replace,  ///< A regular file takes its place.
        Follow,   ///< The file it points to is written, and the link stays a link. For the editor only.
    };
    /// Permissions of a file that did not exist before.
    enum class NewFile {
        Private,      ///< 0600: what is ours.
        AsUserWants,  ///< 0666 less the umask: what the person creates for themselves.
    };

    Link link = Link::Replace;
    NewFile newFile = NewFile::Private;
};

/// Writes `content` so that whoever looks, at any moment and after any crash, finds the old file or the new
/// one, whole; when it returns, the new one is on the disk. An existing file keeps its permissions, owner and
/// extended attributes as far as the system allows, and one that may not be written is not replaced. Any
/// thread. The error is the system's (`systemError`);
/// the old file is then still there, and no temporary. Only when the folder itself cannot be synchronised is
/// the new file in place without being known to survive a power cut.
Result<void> saveAtomically(const FilePath& file, QByteArrayView content, SaveOptions options = {});

/// Removes temporaries that a killed process left in `folder` at least an hour ago. One that is still being
/// written stays, though the clock has jumped. Failures do not matter.
void removeStaleTemporaries(const FilePath& folder);

}  // namespace orvo
