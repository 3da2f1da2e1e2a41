#pragma once

#include "platform/FilePath.h"
#include "platform/Result.h"
#include "platform/SerialQueue.h"

#include <QCoreApplication>
#include <QString>

#include <functional>
#include <memory>
#include <optional>

namespace orvo {

class Dialogs;
class ProjectFiles;

/// Keeps what the editor holds unsaved, for a run that does not end as the person wants, and offers it at the
/// next start. The form on the disk is told in docs/formats/recovery.md. Main thread only.
class EditorRecovery {
    Q_DECLARE_TR_FUNCTIONS(EditorRecovery)

public:
    /// `files` outlives this object. `folder` need not exist.
    EditorRecovery(ProjectFiles& files, FilePath folder);

    /// Writes the editor's unsaved text; without any, removes what this run has written before.
    Result<void> keep();
    /// The same in the background, where a slow disk does not hold up the person who is typing.
    void keepSoon();
    /// For a text that the person has decided about: removes what this run has written.
    void forget();
    /// Asks about texts of earlier runs, newest first, until one is restored into the editor (true). What is
    /// neither restored nor discarded is asked about again at the next start.
    bool offer(Dialogs& dialogs);

private:
    /// The file for this run's text.
    const FilePath& place();
    std::function<Result<void>()> writer();

    ProjectFiles& m_files;
    FilePath m_folder;
    std::optional<FilePath> m_kept;
    /// All changes of `m_kept` on the disk, in their order. Null when the system had no thread left.
    std::shared_ptr<SerialQueue> m_queue;
};

}  // namespace orvo
