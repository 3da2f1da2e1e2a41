#include "team_runs/ApplyCheck.h"

#include "team_runs/ContentHash.h"
#include "team_runs/changePath.h"
#include "team_runs/runError.h"

#include <QCoreApplication>
#include <QSet>

#include <cerrno>

namespace orvo::RunFiles {
namespace {

/// Whether an earlier change removes the file that stands where a folder of `path` should be.
bool clearsTheWay(const QList<FileChange>& earlier, const QByteArray& path) {
    for (const FileChange& change : earlier) {
        if (change.kind() == FileChange::Kind::Removed && path.startsWith(change.path + '/')) return true;
    }
    return false;
}

}  // namespace

bool Place::matches(const std::optional<QByteArray>& reviewedDigits,
                    const std::optional<int>& reviewedMode) const {
    if (isAbsent()) return !reviewedDigits && !reviewedMode;
    return kind == Kind::File && reviewedDigits == digits && reviewedMode == mode;
}

Result<Place> placeAt(FolderCursor& folders, const QByteArray& path) {
    struct stat status{};
    const auto failed = [&](int code) -> Result<Place> {
        switch (code) {
            case ENOENT:
                return Place{};
            case ENOTDIR:
                return Place{Place::Kind::Blocked};
            case ELOOP:
                return refusal(symbolicLink());
            case EINVAL:
                return Place{S_ISDIR(status.st_mode) ? Place::Kind::Folder : Place::Kind::Other};
            default:
                return pathFailure(path, code);
        }
    };
    const auto folder = folders.folderOf(path);
    if (!folder) return failed(folder.error());
    const auto file = openRegularFile(*folder, fileName(path), status);
    if (!file) return failed(file.error());
    auto digits = hashDescriptor(file->number());
    if (!digits) return pathFailure(path, digits.error());
    return Place{Place::Kind::File, std::move(*digits), permissionsOf(status)};
}

tl::unexpected<Error> projectConflict(const QByteArray& path) {
    return refusal(QString::fromUtf8(path) +
                   QCoreApplication::translate("RunFiles",
                                               " changed in your project since this run began. Nothing was "
                                               "applied; review the conflict first."));
}

tl::unexpected<Error> resultConflict(const QByteArray& path) {
    return refusal(
        QCoreApplication::translate(
            "RunFiles", "The assistant changed %1 after this review opened. Refresh changes before applying.")
            .arg(QString::fromUtf8(path)));
}

Result<QList<FileChange>> checkChanges(const QList<FileChange>& changes, int project, int result) {
    FolderCursor projectFolders(project, FolderCursor::Missing::Fail);
    FolderCursor resultFolders(result, FolderCursor::Missing::Fail);
    QList<FileChange> checked;
    QSet<QByteArray> paths;
    for (FileChange change : changes) {
        const Result<QByteArray> plain = checkedPath(change.path);
        if (!plain) return tl::unexpected<Error>(plain.error());
        change.path = *plain;
        // Twice the same file: the second could not find what was reviewed.
        if (paths.contains(change.path)) return projectConflict(change.path);
        paths.insert(change.path);

        const Result<Place> inProject = placeAt(projectFolders, change.path);
        if (!inProject) return tl::unexpected<Error>(inProject.error());
        const Result<Place> inResult = placeAt(resultFolders, change.path);
        if (!inResult) return tl::unexpected<Error>(inResult.error());
        const bool blocked = inProject->kind == Place::Kind::Blocked && !clearsTheWay(checked, change.path);
        if (blocked || !inProject->matches(change.before, change.beforeMode))
            return projectConflict(change.path);
        // A review sees files only: where a folder took a file's place, the file is removed.
        const bool removed = inResult->kind == Place::Kind::Folder && !change.after && !change.afterMode;
        if (!removed && !inResult->matches(change.after, change.afterMode))
            return resultConflict(change.path);
        // Absent before and after: there is nothing to do.
        if (change.before || change.after) checked.append(change);
    }
    return checked;
}

}  // namespace orvo::RunFiles
