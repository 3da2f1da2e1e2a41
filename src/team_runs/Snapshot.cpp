#include "team_runs/Snapshot.h"

#include "platform/AppFolders.h"
#include "team_runs/FileCopier.h"
#include "team_runs/TeamRun.h"
#include "team_runs/runError.h"

namespace orvo::RunFiles {

Result<CopySummary> snapshot(const FilePath& project, const QList<FilePath>& destinations,
                             const CopyOptions& options) {
    const auto source = openRoot(project);
    // The walk says in words what is wrong with the folder.
    const Result<FileMap> map = source ? files(source->number(), options.stop) : files(project, options.stop);
    if (!map) return tl::unexpected<Error>(map.error());
    if (!source) return pathFailure(project.bytes(), source.error());
    std::vector<FileDescriptor> folders;
    for (const FilePath& destination : destinations) {
        if (const Result<void> made = createPrivateFolder(destination); !made) {
            return tl::unexpected<Error>(made.error());
        }
        auto folder = openRoot(destination);
        if (!folder) return pathFailure(destination.bytes(), folder.error());
        folders.push_back(std::move(*folder));
    }
    return FileCopier(*map, source->number(), folders, options).run();
}

Result<QList<FilePath>> copies(const FilePath& baseline, int count, const FilePath& destinationRoot,
                               const CopyOptions& options) {
    QList<FilePath> folders;
    for (int i = 0; i < count; ++i)
        folders.append(destinationRoot.child(freshFolderName()));
    const Result<CopySummary> copied = snapshot(baseline, folders, options);
    if (!copied) return tl::unexpected<Error>(copied.error());
    return folders;
}

QByteArray freshFolderName() {
    return uuidText(QUuid::createUuid()).toLatin1();
}

}  // namespace orvo::RunFiles
