#pragma once

#include "team_runs/ApplyJournal.h"
#include "team_runs/HeldFolders.h"

#include <optional>
#include <vector>

namespace orvo::RunFiles {

/// One apply, after its checks. Every step knows what it has really done, and only that is undone.
class Applier {
public:
    /// `changes` come from `checkChanges`. The descriptors outlive this object.
    Applier(const QList<FileChange>& changes, int project, int result);

    /// `project` and `result` name the open folders, for the journal.
    Result<void> run(const FilePath& project, const FilePath& result, const FilePath& backup);

private:
    enum class Done {
        Nothing,
        Added,      // the new file stands at its place
        Exchanged,  // and the old one under the temporary name
        Replaced,   // and the old one is in the backup only
        Removed,    // the old one stands under the temporary name
    };

    struct Step {
        FileChange change;
        /// Path in the project for the new content while it waits, and for the old one until the end.
        QByteArray temporary;
        /// The temporary holds something that is ours to delete.
        bool spare = false;
        Done done = Done::Nothing;
        /// The file made of the new content.
        dev_t device = 0;
        ino_t inode = 0;
        QList<QByteArray> createdFolders;
    };

    Result<void> chooseTemporaries();
    Result<void> backUpAll(const FilePath& backup);
    Result<void> backUp(const FileChange& change, HeldFolders& backup);

    Result<void> stage(Step& step);
    SystemResult<void> fillTemporary(Step& step, int source, int temporary, QByteArray& digits);

    Result<void> commit(Step& step);
    Result<void> add(Step& step);
    Result<void> change(Step& step);
    Result<void> replaceChecked(Step& step, int folder);
    Result<void> remove(Step& step);
    bool oldFileIs(const FileChange& change, int folder, const QByteArray& name) const;

    /// Puts everything back; the paths for which that was not possible.
    QList<QByteArray> rollBack();
    bool undo(Step& step);
    bool undoAddition(Step& step);
    bool undoReplacement(Step& step);
    bool newFileIs(const Step& step, int folder, const QByteArray& name) const;
    bool deleteTemporary(const Step& step);
    static Error failedWith(Error error, const QList<QByteArray>& left, const FilePath& backup);

    int m_project;
    HeldFolders m_folders;
    FolderCursor m_results;
    std::optional<FileDescriptor> m_backup;
    std::vector<Step> m_steps;
};

}  // namespace orvo::RunFiles
