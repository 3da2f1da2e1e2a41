#include "team_runs/ApplyJournal.h"

#include "platform/listFolder.h"
#include "platform/readFile.h"
#include "platform/systemError.h"
#include "team_runs/ContentHash.h"
#include "team_runs/changePath.h"
#include "team_runs/folderAccess.h"
#include "team_runs/jsonFields.h"
#include "team_runs/runError.h"

#include <QCoreApplication>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <cerrno>
#include <cstdio>

#include <fcntl.h>
#include <sys/file.h>

namespace orvo::RunFiles {
namespace {

constexpr char suffix[] = ".journal";
// 5,000 changes with long paths; a file beyond it is none of ours.
constexpr qsizetype maximumBytes = 64 << 20;

QByteArray encode(const ApplyPlan& plan) {
    QJsonArray changes;
    for (const ApplyPlan::Step& step : plan.steps) {
        QJsonObject object = jsonOf(step.change);
        insertBytes(object, "temporary", step.temporary);
        changes.append(object);
    }
    QJsonObject object{{QStringLiteral("changes"), changes}};
    insertBytes(object, "project", plan.project.bytes());
    insertBytes(object, "result", plan.result.bytes());
    insertBytes(object, "backup", plan.backup.bytes());
    return QJsonDocument(object).toJson(QJsonDocument::Compact);
}

std::optional<ApplyPlan> decode(const QByteArray& json) {
    const QJsonObject object = QJsonDocument::fromJson(json).object();
    const auto project = bytesField(object, "project");
    const auto result = bytesField(object, "result");
    const auto backup = bytesField(object, "backup");
    const QJsonValue changes = object.value(QLatin1String("changes"));
    if (!project || !result || !backup || !changes.isArray()) return std::nullopt;
    ApplyPlan plan{FilePath(*project), FilePath(*result), FilePath(*backup), {}};
    for (const QJsonValue value : changes.toArray()) {
        const auto change = changeFrom(value.toObject());
        const auto temporary = bytesField(value.toObject(), "temporary");
        if (!change || !temporary) return std::nullopt;
        plan.steps.append({*change, *temporary});
    }
    return plan;
}

/// The content hash of what stands at `path`; nothing for anything but a regular file reached without links.
std::optional<QByteArray> hashAt(int root, const QByteArray& path) {
    const Result<QByteArray> plain = checkedPath(path);
    if (!plain) return std::nullopt;
    const auto folder = openFolderBeneath(root, parentPath(*plain));
    if (!folder) return std::nullopt;
    struct stat status{};
    const auto file = openRegularFile(folder->number(), fileName(*plain), status);
    if (!file) return std::nullopt;
    auto digits = hashDescriptor(file->number());
    if (!digits) return std::nullopt;
    return *digits;
}

std::optional<QByteArray> hashAt(const FilePath& root, const QByteArray& path) {
    const auto folder = openRoot(root);
    return folder ? hashAt(folder->number(), path) : std::nullopt;
}

/// Whether the temporary of a step holds nothing that could be lost.
bool isSpare(const ApplyPlan& plan, const ApplyPlan::Step& step, int project, const QByteArray& digits) {
    const FileChange& change = step.change;
    if (change.before && digits == *change.before) return hashAt(plan.backup, change.path) == change.before;
    const auto target = hashAt(project, change.path);
    if (change.after && digits == *change.after) {
        return target == change.after || hashAt(plan.result, change.path) == change.after;
    }
    // Half written: the place itself was not touched yet. Otherwise it may be somebody's work that was there.
    return target == change.before;
}

void removeTemporaries(const ApplyPlan& plan, int project) {
    for (const ApplyPlan::Step& step : plan.steps) {
        const auto digits = hashAt(project, step.temporary);
        if (!digits || !isSpare(plan, step, project, *digits)) continue;
        const auto folder = openFolderBeneath(project, parentPath(step.temporary));
        if (folder) unlinkat(folder->number(), fileName(step.temporary).constData(), 0);
    }
}

std::optional<UnfinishedApply> takeUnfinished(const FilePath& file) {
    const FileDescriptor lock(open(file.bytes().constData(), O_RDWR | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    if (!lock.isOpen() || flock(lock.number(), LOCK_EX | LOCK_NB) != 0) return std::nullopt;
    const Result<QByteArray> content = readFile(lock.number(), maximumBytes);
    const auto plan = content ? decode(*content) : std::nullopt;
    // It is complete before the project is touched; half a journal has nothing to tell.
    if (!plan) return std::nullopt;
    UnfinishedApply unfinished{*plan, {}};
    if (const auto project = openRoot(plan->project)) {
        removeTemporaries(*plan, project->number());
        for (const ApplyPlan::Step& step : plan->steps) {
            if (hashAt(project->number(), step.change.path) == step.change.after) {
                unfinished.applied.append(step.change.path);
            }
        }
    }
    if (unfinished.applied.size() == plan->steps.size()) {
        // Only the tidying was interrupted.
        unlink(file.bytes().constData());
        return std::nullopt;
    }
    std::rename(file.bytes().constData(), (file.bytes() + ".told").constData());
    return unfinished;
}

}  // namespace

Result<ApplyJournal> ApplyJournal::create(const ApplyPlan& plan) {
    const FilePath file(plan.backup.bytes() + suffix);
    FileDescriptor lock(
        open(file.bytes().constData(), O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600));
    if (!lock.isOpen()) return pathFailure(file.nameBytes(), errno);
    ApplyJournal journal(file, std::move(lock));
    const QByteArray content = encode(plan);
    int code = 0;
    if (flock(journal.m_lock.number(), LOCK_EX | LOCK_NB) != 0) code = errno;
    if (code == 0) {
        const auto written =
            writeFully(journal.m_lock.number(), content.constData(), static_cast<size_t>(content.size()));
        if (!written) code = written.error();
    }
    if (code == 0 && fsync(journal.m_lock.number()) != 0) code = errno;
    if (code == 0) {
        const auto folder = openRoot(file.parent());
        if (!folder) {
            code = folder.error();
        } else if (fsync(folder->number()) != 0 && errno != EINVAL) {
            code = errno;
        }
    }
    if (code == 0) return journal;
    unlink(file.bytes().constData());
    return pathFailure(file.nameBytes(), code);
}

Result<void> ApplyJournal::remove() {
    if (unlink(m_file.bytes().constData()) != 0) return pathFailure(m_file.nameBytes(), errno);
    return {};
}

QString UnfinishedApply::message() const {
    return QCoreApplication::translate("RunFiles",
                                       "Applying files to %1 was interrupted. The originals are saved in %2.")
        .arg(plan.project.display(), plan.backup.display());
}

QList<UnfinishedApply> takeUnfinishedApplies(const FilePath& runsFolder) {
    QList<UnfinishedApply> found;
    const Result<QList<QByteArray>> runs = listFolder(runsFolder);
    if (!runs) return found;
    for (const QByteArray& run : *runs) {
        const Result<QList<QByteArray>> names = listFolder(runsFolder.child(run));
        if (!names) continue;
        for (const QByteArray& name : *names) {
            if (!name.startsWith("backup-") || !name.endsWith(suffix)) continue;
            if (auto unfinished = takeUnfinished(runsFolder.child(run).child(name))) {
                found.append(*std::move(unfinished));
            }
        }
    }
    return found;
}

}  // namespace orvo::RunFiles
