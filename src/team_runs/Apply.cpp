#include "team_runs/Apply.h"

#include "team_runs/Applier.h"
#include "team_runs/ApplyCheck.h"
#include "team_runs/runError.h"

#include <QCoreApplication>

#include <cerrno>

#include <sys/file.h>

namespace orvo::RunFiles {

Result<void> apply(const QList<FileChange>& changes, const FilePath& project, const FilePath& result,
                   const FilePath& backup) {
    const auto projectRoot = openRoot(project);
    if (!projectRoot) {
        if (projectRoot.error() == ENOENT || projectRoot.error() == ENOTDIR) return refusal(folderMissing());
        return pathFailure(project.bytes(), projectRoot.error());
    }
    // Released when the descriptor is closed. File systems without locks do without.
    if (flock(projectRoot->number(), LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK) {
        return refusal(QCoreApplication::translate(
            "RunFiles", "Other files are being applied to this project right now. Try again in a moment."));
    }
    const auto resultRoot = openRoot(result);
    if (!resultRoot) {
        // The assistant removed its whole copy; nothing in it is as it was reviewed.
        if (!changes.isEmpty() && resultRoot.error() == ENOENT) return resultConflict(changes.front().path);
        return pathFailure(result.bytes(), resultRoot.error());
    }
    const auto checked = checkChanges(changes, projectRoot->number(), resultRoot->number());
    if (!checked) return tl::unexpected<Error>(checked.error());
    return Applier(*checked, projectRoot->number(), resultRoot->number()).run(project, result, backup);
}

}  // namespace orvo::RunFiles
