#pragma once

#include "platform/FileDescriptor.h"
#include "platform/FilePath.h"
#include "platform/Result.h"
#include "team_runs/FileChange.h"

namespace orvo::RunFiles {

/// What an apply is about to do to a project.
struct ApplyPlan {
    struct Step {
        FileChange change;
        /// Path in the project under which the new content waits, and the old one is kept until the end.
        QByteArray temporary;
    };

    FilePath project;
    FilePath result;
    FilePath backup;
    QList<Step> steps;
};

/// The plan on disk, beside the backup folder, for as long as the apply has not ended. Locked by the process
/// that applies.
class ApplyJournal {
public:
    /// Written and synchronised before the project is touched.
    static Result<ApplyJournal> create(const ApplyPlan& plan);

    /// The apply has ended, either way.
    Result<void> remove();

private:
    ApplyJournal(FilePath file, FileDescriptor lock) : m_file(std::move(file)), m_lock(std::move(lock)) {}

    FilePath m_file;
    FileDescriptor m_lock;
};

/// An apply whose process died before it ended.
struct UnfinishedApply {
    ApplyPlan plan;
    /// Paths whose file is the new one already; the originals of those are in the backup folder.
    QList<QByteArray> applied;

    /// For the person: what happened, and where the originals are.
    QString message() const;
};

/// Finds the unfinished applies of all runs, removes the temporary files they left in their projects where
/// the same content is safe elsewhere, and renames their journals, so that each is reported once. One that is
/// under way in another process is left alone. Any thread.
QList<UnfinishedApply> takeUnfinishedApplies(const FilePath& runsFolder);

}  // namespace orvo::RunFiles
