#pragma once

#include "platform/FilePath.h"
#include "platform/Result.h"

#include <QCoreApplication>
#include <QString>

#include <optional>

namespace orvo {

class Dialogs;
class ProjectFiles;

/// Keeps what the editor holds unsaved when the system ends the application, and offers it at the next
/// start. The form on the disk is told in docs/formats/recovery.md. Main thread only.
class EditorRecovery {
    Q_DECLARE_TR_FUNCTIONS(EditorRecovery)

public:
    /// `files` outlives this object. `folder` need not exist.
    EditorRecovery(ProjectFiles& files, FilePath folder);

    /// Writes the editor's unsaved text; without any, removes what this run has written before.
    Result<void> keep();
    /// For a text that the person has decided about: removes what this run has written.
    void forget();
    /// Asks about texts of earlier runs, newest first, until one is restored into the editor (true). What is
    /// neither restored nor discarded is asked about again at the next start.
    bool offer(Dialogs& dialogs);

private:
    ProjectFiles& m_files;
    FilePath m_folder;
    std::optional<FilePath> m_kept;
};

}  // namespace orvo
