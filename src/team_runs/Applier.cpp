#include "team_runs/Applier.h"

#include "platform/AppFolders.h"
#include "platform/extendedAttributes.h"
#include "team_runs/ApplyCheck.h"
#include "team_runs/ContentHash.h"
#include "team_runs/contentCopy.h"
#include "team_runs/runError.h"

#include <QCoreApplication>
#include <QStringList>

#include <array>
#include <cerrno>
#include <ranges>

#include <fcntl.h>

namespace orvo::RunFiles {
namespace {

constexpr int defaultMode = 0644;
constexpr int creationFlags = O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC;

/// What a failed call on a folder or file of the project means to the person.
tl::unexpected<Error> projectFailure(const QByteArray& path, int code) {
    switch (code) {
        case ELOOP:
            return refusal(symbolicLink());
        // Something else stands there now, or nothing.
        case ENOENT:
        case ENOTDIR:
        case EEXIST:
        case EINVAL:
        case ESTALE:
            return projectConflict(path);
        default:
            return pathFailure(path, code);
    }
}

QByteArray joined(const QByteArray& folder, const QByteArray& name) {
    return folder.isEmpty() ? name : folder + '/' + name;
}

}  // namespace

Applier::Applier(const QList<FileChange>& changes, int project, int result)
    : m_project(project), m_folders(project), m_results(result, FolderCursor::Missing::Fail) {
    for (const FileChange& change : changes)
        m_steps.push_back({.change = change, .temporary = {}, .createdFolders = {}});
}

Result<void> Applier::run(const FilePath& project, const FilePath& result, const FilePath& backup) {
    if (m_steps.empty()) return {};
    if (const Result<void> chosen = chooseTemporaries(); !chosen) return chosen;
    if (const Result<void> kept = backUpAll(backup); !kept) return kept;
    ApplyPlan plan{project, result, backup, {}};
    for (const Step& step : m_steps)
        plan.steps.append({step.change, step.temporary});
    Result<ApplyJournal> journal = ApplyJournal::create(plan);
    if (!journal) return tl::unexpected<Error>(journal.error());

    Result<void> done;
    for (auto step = m_steps.begin(); done && step != m_steps.end(); ++step)
        done = stage(*step);
    for (auto step = m_steps.begin(); done && step != m_steps.end(); ++step)
        done = commit(*step);
    if (done) {
        if (const auto written = m_folders.synchronise(); !written) {
            done = pathFailure(project.nameBytes(), written.error());
        }
    }
    bool tidy = true;
    if (done) {
        for (Step& step : m_steps)
            tidy = deleteTemporary(step) && tidy;
    } else {
        const QList<QByteArray> left = rollBack();
        tidy = left.isEmpty();
        done = tl::unexpected<Error>(failedWith(std::move(done.error()), left, backup));
    }
    // A journal that stays tells the next start what is left to tidy.
    if (tidy) [[maybe_unused]]
        const Result<void> removed = journal->remove();
    return done;
}

/// Beside the place, or as near to it as there is a folder: one rename must reach it.
Result<void> Applier::chooseTemporaries() {
    for (Step& step : m_steps) {
        SystemResult<QByteArray> folder = parentPath(step.change.path);
        if (step.change.kind() == FileChange::Kind::Added) folder = deepestFolder(m_project, *folder);
        if (!folder) return projectFailure(step.change.path, folder.error());
        step.temporary = joined(*folder, temporaryName());
    }
    return {};
}

// Backups

Result<void> Applier::backUpAll(const FilePath& backup) {
    const bool needed =
        std::ranges::any_of(m_steps, [](const Step& step) { return step.change.before.has_value(); });
    if (const Result<void> made = createPrivateFolder(needed ? backup : backup.parent()); !made) return made;
    if (!needed) return {};
    auto root = openRoot(backup);
    if (!root) return pathFailure(backup.nameBytes(), root.error());
    m_backup = std::move(*root);
    HeldFolders folders(m_backup->number());
    for (const Step& step : m_steps) {
        if (!step.change.before) continue;
        if (const Result<void> kept = backUp(step.change, folders); !kept) return kept;
    }
    if (const auto written = folders.synchronise(); !written)
        return pathFailure(backup.nameBytes(), written.error());
    const auto above = openRoot(backup.parent());
    if (above && fsync(above->number()) != 0 && errno != EINVAL)
        return pathFailure(backup.nameBytes(), errno);
    return {};
}

Result<void> Applier::backUp(const FileChange& change, HeldFolders& backup) {
    const auto folder = m_folders.confirmed(parentPath(change.path));
    if (!folder) return projectFailure(change.path, folder.error());
    struct stat status{};
    const auto original = openRegularFile(*folder, fileName(change.path), status);
    if (!original) return projectFailure(change.path, original.error());
    QList<QByteArray> created;
    const auto place = backup.make(parentPath(change.path), created);
    if (!place) return pathFailure(change.path, place.error());
    const FileDescriptor copy(openat(*place, fileName(change.path).constData(), creationFlags, 0600));
    if (!copy.isOpen()) return pathFailure(change.path, errno);
    const auto digits = copyContent(original->number(), copy.number());
    if (!digits) return pathFailure(change.path, digits.error());
    // What is kept must be what was checked.
    if (*digits != change.before) return projectConflict(change.path);
    copyAttributes(original->number(), copy.number());
    if (fchmod(copy.number(), status.st_mode & 07777) != 0) return pathFailure(change.path, errno);
    const std::array<timespec, 2> times = {status.st_atim, status.st_mtim};
    [[maybe_unused]] const int kept = futimens(copy.number(), times.data());
    if (fsync(copy.number()) != 0) return pathFailure(change.path, errno);
    return {};
}

// New contents

Result<void> Applier::stage(Step& step) {
    if (!step.change.after) return {};
    const auto results = m_results.folderOf(step.change.path);
    if (!results) return resultConflict(step.change.path);
    struct stat status{};
    const auto source = openRegularFile(*results, fileName(step.change.path), status);
    if (!source) return resultConflict(step.change.path);

    const auto folder = m_folders.confirmed(parentPath(step.temporary));
    if (!folder) return projectFailure(step.change.path, folder.error());
    const FileDescriptor temporary(
        openat(*folder, fileName(step.temporary).constData(), creationFlags, 0600));
    if (!temporary.isOpen()) return pathFailure(step.change.path, errno);
    step.spare = true;
    QByteArray digits;
    const auto filled = fillTemporary(step, source->number(), temporary.number(), digits);
    if (!filled) return pathFailure(step.change.path, filled.error());
    if (digits != *step.change.after) return resultConflict(step.change.path);
    return {};
}

SystemResult<void> Applier::fillTemporary(Step& step, int source, int temporary, QByteArray& digits) {
    auto copied = copyContent(source, temporary);
    if (!copied) return tl::unexpected<int>(copied.error());
    digits = std::move(*copied);
    if (step.change.before) {
        const auto folder = m_folders.open(parentPath(step.change.path));
        if (!folder) return tl::unexpected<int>(folder.error());
        struct stat old{};
        const auto file = openRegularFile(*folder, fileName(step.change.path), old);
        if (!file) return tl::unexpected<int>(file.error());
        // Not everybody may give files away; the content matters more than its owner.
        [[maybe_unused]] const int given = fchown(temporary, old.st_uid, old.st_gid);
        copyAttributes(file->number(), temporary);
    }
    const int mode = step.change.afterMode.value_or(defaultMode) & 0777;
    if (fchmod(temporary, static_cast<mode_t>(mode)) != 0) return tl::unexpected<int>(errno);
    if (fsync(temporary) != 0) return tl::unexpected<int>(errno);
    struct stat made{};
    if (fstat(temporary, &made) != 0) return tl::unexpected<int>(errno);
    step.device = made.st_dev;
    step.inode = made.st_ino;
    return {};
}

// Changing the project

Result<void> Applier::commit(Step& step) {
    switch (step.change.kind()) {
        case FileChange::Kind::Added:
            return add(step);
        case FileChange::Kind::Changed:
            return change(step);
        case FileChange::Kind::Removed:
            return remove(step);
    }
    return {};
}

Result<void> Applier::add(Step& step) {
    const auto folder = m_folders.make(parentPath(step.change.path), step.createdFolders);
    if (!folder) return projectFailure(step.change.path, folder.error());
    const auto waiting = m_folders.open(parentPath(step.temporary));
    if (!waiting) return projectFailure(step.change.path, waiting.error());
    const auto moved =
        moveExclusively(*waiting, fileName(step.temporary), *folder, fileName(step.change.path));
    if (!moved) return projectFailure(step.change.path, moved.error());
    step.spare = false;
    step.done = Done::Added;
    return {};
}

Result<void> Applier::change(Step& step) {
    const auto folder = m_folders.confirmed(parentPath(step.change.path));
    if (!folder) return projectFailure(step.change.path, folder.error());
    const QByteArray temporary = fileName(step.temporary);
    const auto exchanged = exchange(*folder, fileName(step.change.path), temporary);
    if (!exchanged) {
        if (exchanged.error() == EINVAL || exchanged.error() == ENOSYS) return replaceChecked(step, *folder);
        return projectFailure(step.change.path, exchanged.error());
    }
    step.done = Done::Exchanged;
    if (!oldFileIs(step.change, *folder, temporary)) return projectConflict(step.change.path);
    return {};
}

Result<void> Applier::replaceChecked(Step& step, int folder) {
    const QByteArray name = fileName(step.change.path);
    if (!oldFileIs(step.change, folder, name)) return projectConflict(step.change.path);
    if (renameat(folder, fileName(step.temporary).constData(), folder, name.constData()) != 0) {
        return projectFailure(step.change.path, errno);
    }
    step.spare = false;
    step.done = Done::Replaced;
    return {};
}

Result<void> Applier::remove(Step& step) {
    const auto folder = m_folders.confirmed(parentPath(step.change.path));
    if (!folder) return projectFailure(step.change.path, folder.error());
    const QByteArray temporary = fileName(step.temporary);
    const auto moved = moveExclusively(*folder, fileName(step.change.path), *folder, temporary);
    if (!moved) return projectFailure(step.change.path, moved.error());
    step.done = Done::Removed;
    if (!oldFileIs(step.change, *folder, temporary)) return projectConflict(step.change.path);
    return {};
}

bool Applier::oldFileIs(const FileChange& change, int folder, const QByteArray& name) const {
    struct stat status{};
    const auto file = openRegularFile(folder, name, status);
    if (!file || permissionsOf(status) != change.beforeMode) return false;
    const auto digits = hashDescriptor(file->number());
    return digits && *digits == change.before;
}

// Putting back

QList<QByteArray> Applier::rollBack() {
    QList<QByteArray> left;
    for (Step& step : m_steps | std::views::reverse) {
        const bool undone = undo(step);
        if (!undone) left.prepend(step.change.path);
        const bool deleted = !step.spare || deleteTemporary(step);
        for (const QByteArray& folder : step.createdFolders | std::views::reverse) {
            // Somebody may have put something of their own into it.
            [[maybe_unused]] const auto removed = m_folders.unmake(folder);
        }
        if (undone && !deleted) left.prepend(step.temporary);
    }
    [[maybe_unused]] const auto written = m_folders.synchronise();
    return left;
}

bool Applier::undo(Step& step) {
    if (step.done == Done::Nothing) return true;
    const auto folder = m_folders.open(parentPath(step.change.path));
    if (!folder) return false;
    const QByteArray name = fileName(step.change.path);
    const QByteArray temporary = fileName(step.temporary);
    switch (step.done) {
        case Done::Nothing:
            break;
        case Done::Added:
            return undoAddition(step);
        case Done::Exchanged:
            // A file that somebody wrote meanwhile stays, and the old one with it, under its temporary name.
            step.spare = false;
            if (!newFileIs(step, *folder, name) || !exchange(*folder, name, temporary)) return false;
            step.spare = true;
            return true;
        case Done::Replaced:
            return undoReplacement(step);
        case Done::Removed:
            return moveExclusively(*folder, temporary, *folder, name).has_value();
    }
    return true;
}

bool Applier::undoAddition(Step& step) {
    const auto folder = m_folders.open(parentPath(step.change.path));
    const auto waiting = m_folders.open(parentPath(step.temporary));
    if (!folder || !waiting) return false;
    const QByteArray name = fileName(step.change.path);
    const QByteArray temporary = fileName(step.temporary);
    // Taken away first and looked at then: between a look and a deletion it could become somebody else's.
    const auto taken = moveExclusively(*folder, name, *waiting, temporary);
    if (!taken) return taken.error() == ENOENT;
    if (newFileIs(step, *waiting, temporary)) {
        step.spare = true;
        return true;
    }
    [[maybe_unused]] const auto returned = moveExclusively(*waiting, temporary, *folder, name);
    return false;
}

bool Applier::undoReplacement(Step& step) {
    const auto folder = m_folders.open(parentPath(step.change.path));
    if (!folder || !m_backup || !newFileIs(step, *folder, fileName(step.change.path))) return false;
    FolderCursor backups(m_backup->number(), FolderCursor::Missing::Fail);
    const auto backup = backups.folderOf(step.change.path);
    if (!backup) return false;
    struct stat status{};
    const auto original = openRegularFile(*backup, fileName(step.change.path), status);
    if (!original) return false;
    const QByteArray name = fileName(step.temporary);
    const FileDescriptor copy(openat(*folder, name.constData(), creationFlags, 0600));
    if (!copy.isOpen()) return false;
    step.spare = true;
    const auto digits = copyContent(original->number(), copy.number());
    if (!digits || *digits != step.change.before) return false;
    struct stat replaced{};
    if (fstatat(*folder, fileName(step.change.path).constData(), &replaced, AT_SYMLINK_NOFOLLOW) == 0) {
        [[maybe_unused]] const int given = fchown(copy.number(), replaced.st_uid, replaced.st_gid);
    }
    copyAttributes(original->number(), copy.number());
    const int mode = step.change.beforeMode.value_or(defaultMode);
    if (fchmod(copy.number(), static_cast<mode_t>(mode)) != 0 || fsync(copy.number()) != 0) return false;
    if (renameat(*folder, name.constData(), *folder, fileName(step.change.path).constData()) != 0)
        return false;
    step.spare = false;
    return true;
}

bool Applier::newFileIs(const Step& step, int folder, const QByteArray& name) const {
    struct stat status{};
    const auto file = openRegularFile(folder, name, status);
    if (!file || status.st_dev != step.device || status.st_ino != step.inode) return false;
    const auto digits = hashDescriptor(file->number());
    return digits && *digits == step.change.after;
}

bool Applier::deleteTemporary(const Step& step) {
    const auto folder = m_folders.open(parentPath(step.temporary));
    if (!folder) return false;
    const QByteArray name = fileName(step.temporary);
    // Once more on failure: nobody else would delete it before the next start.
    for (int attempt = 0; attempt < 2; ++attempt) {
        if (unlinkat(*folder, name.constData(), 0) == 0 || errno == ENOENT) return true;
    }
    return false;
}

Error Applier::failedWith(Error error, const QList<QByteArray>& left, const FilePath& backup) {
    if (left.isEmpty()) return error;
    QStringList names;
    for (const QByteArray& path : left)
        names.append(QString::fromUtf8(path));
    error.message += u' ' + QCoreApplication::translate(
                                "RunFiles", "These could not be put back: %1. The originals are saved in %2.")
                                .arg(names.join(QStringLiteral(", ")), backup.display());
    return error;
}

}  // namespace orvo::RunFiles
