#pragma once

#include "platform/Result.h"
#include "team_runs/FileChange.h"
#include "team_runs/folderAccess.h"

namespace orvo::RunFiles {

/// What stands at a place, as checks compare it.
struct Place {
    enum class Kind {
        Nothing,
        Blocked,  ///< Nothing, and a file stands where a folder of the path should be.
        File,
        Folder,
        Other,  ///< A pipe, socket or device.
    };

    Kind kind = Kind::Nothing;
    /// Of a file.
    QByteArray digits = {};
    int mode = 0;

    bool isAbsent() const { return kind == Kind::Nothing || kind == Kind::Blocked; }
    /// Whether this is the reviewed state; nothing, where there was no file, counts.
    bool matches(const std::optional<QByteArray>& reviewedDigits,
                 const std::optional<int>& reviewedMode) const;
};

/// A link on the way, or at the place, is the refusal that names links.
Result<Place> placeAt(FolderCursor& folders, const QByteArray& path);

tl::unexpected<Error> projectConflict(const QByteArray& path);
tl::unexpected<Error> resultConflict(const QByteArray& path);

/// The changes with their paths in plain form, once project and copy are both as they were reviewed. Nothing
/// is written. The error is that of the first change that fails.
Result<QList<FileChange>> checkChanges(const QList<FileChange>& changes, int project, int result);

}  // namespace orvo::RunFiles
