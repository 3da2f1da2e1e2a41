#include "team_runs/ui/CopyReview.h"

#include "platform/Dialogs.h"
#include "platform/observe.h"
#include "platform/runInBackground.h"
#include "team_runs/Changes.h"
#include "team_runs/Preview.h"
#include "workspace/Workspace.h"

#include <QCoreApplication>
#include <QPointer>

#include <algorithm>

namespace orvo {
namespace {

// Lines of the confirmation beyond these are counted only, so that its buttons stay on the screen.
constexpr qsizetype listedFiles = 20;

}  // namespace

CopyReview::CopyReview(TeamRuns& teamRuns, Workspace& workspace, QObject* parent)
    : QObject(parent), m_teamRuns(teamRuns), m_workspace(workspace) {}

void CopyReview::review(const TeamRun& run, const RunCopy& copy) {
    clear();
    m_run = run;
    m_copy = copy;
    m_inspecting = true;
    m_stopInspecting = std::stop_source();
    Q_EMIT copyChanged();
    Q_EMIT busyChanged();
    const auto progress = [review = QPointer(this), token = m_reviewToken](int files, int allFiles) {
        QMetaObject::invokeMethod(
            QCoreApplication::instance(),
            [review, token, files, allFiles] {
                if (review) review->reportRead(token, files, allFiles);
            },
            Qt::QueuedConnection);
    };
    runInBackground(
        this,
        [baseline = run.baseline(), result = copy.directory, stop = m_stopInspecting.get_token(), progress] {
            return RunFiles::changes(baseline, result, stop, progress);
        },
        [this, token = m_reviewToken](const Result<QList<FileChange>>& changes) {
            if (token == m_reviewToken) show(changes);
        });
}

void CopyReview::reportRead(quint64 token, int files, int allFiles) {
    if (token != m_reviewToken || !m_inspecting) return;
    m_filesToRead = allFiles;
    if (assign(m_filesRead, files)) Q_EMIT filesReadChanged();
}

void CopyReview::show(const Result<QList<FileChange>>& changes) {
    m_inspecting = false;
    Q_EMIT busyChanged();
    if (!changes) {
        setMessage(changes.error().message);
        return;
    }
    m_changes = *changes;
    Q_EMIT changesChanged();
    if (m_changes.isEmpty())
        setMessage(tr("No file changes. Check the output for findings or setup instructions."));
    else
        setPreviewPath(m_changes.front().path);
}

void CopyReview::clear() {
    ++m_reviewToken;
    m_filesToRead = 0;
    if (assign(m_filesRead, 0)) Q_EMIT filesReadChanged();
    m_stopInspecting.request_stop();
    const bool hadCopy = m_copy.has_value();
    const bool wasBusy = m_inspecting;
    m_run.reset();
    m_copy.reset();
    m_inspecting = false;
    const bool hadChanges = !std::exchange(m_changes, {}).isEmpty();
    const bool hadSelection = !std::exchange(m_selection, {}).isEmpty();
    setPreviewPath(std::nullopt);
    setMessage(QString());
    if (hadCopy) Q_EMIT copyChanged();
    if (wasBusy) Q_EMIT busyChanged();
    if (hadChanges) Q_EMIT changesChanged();
    if (hadSelection) Q_EMIT selectionChanged();
}

void CopyReview::setSelected(const QByteArray& path, bool selected) {
    if (m_selection.contains(path) == selected) return;
    if (selected)
        m_selection.insert(path);
    else
        m_selection.remove(path);
    Q_EMIT selectionChanged();
}

void CopyReview::selectAll() {
    QSet<QByteArray> all;
    for (const FileChange& change : m_changes)
        all.insert(change.path);
    if (assign(m_selection, all)) Q_EMIT selectionChanged();
}

void CopyReview::setPreviewPath(const std::optional<QByteArray>& path) {
    if (!assign(m_previewPath, path)) return;
    const bool hadComparison = m_comparison.has_value();
    m_comparison.reset();
    Q_EMIT previewPathChanged();
    if (hadComparison) Q_EMIT comparisonChanged();
    if (!path || !m_run || !m_copy) return;
    runInBackground(
        this,
        [baseline = m_run->baseline(), result = m_copy->directory, path = *path] {
            return Comparison{RunFiles::preview(baseline, path), RunFiles::preview(result, path)};
        },
        [this, token = m_reviewToken, path = *path](const Comparison& comparison) {
            if (token != m_reviewToken || m_previewPath != path) return;
            if (assign(m_comparison, std::optional(comparison))) Q_EMIT comparisonChanged();
        });
}

void CopyReview::apply() {
    if (!m_run || !m_copy || m_applying || m_teamRuns.applyingRunID() || m_teamRuns.copyRunning(*m_copy))
        return;
    const quint64 token = m_reviewToken;
    if (!m_workspace.files().confirmDiscard()) return;
    QList<FileChange> chosen;
    std::ranges::copy_if(m_changes, std::back_inserter(chosen),
                         [this](const FileChange& change) { return m_selection.contains(change.path); });
    if (chosen.isEmpty() || !m_run || !confirm(*m_run, chosen)) return;
    // The questions run an event loop: by now another copy may be under review.
    if (token != m_reviewToken || m_applying || m_teamRuns.applyingRunID()) return;
    m_applying = true;
    Q_EMIT busyChanged();
    m_teamRuns.apply(*m_run, *m_copy, chosen, [review = QPointer(this), chosen](const Result<void>& outcome) {
        if (review) review->applied(chosen, outcome);
    });
}

bool CopyReview::confirm(const TeamRun& run, const QList<FileChange>& chosen) {
    QString list;
    for (const FileChange& change : chosen.first(std::min(chosen.size(), listedFiles)))
        list += u'\n' + textOf(change.kind()) + QStringLiteral(": ") + change.displayPath();
    if (chosen.size() > listedFiles) list += u'\n' + tr("… and %1 more").arg(chosen.size() - listedFiles);
    return m_workspace.dialogs().alert(
               {.message = tr("Apply %1 reviewed files?").arg(chosen.size()),
                .informativeText =
                    tr("Project: %1").arg(run.project.display()) + list +
                    tr("\n\nOriginal files are backed up inside this run. Conflicting changes are blocked."),
                .buttons = {tr("Apply changes"), tr("Cancel")},
                .defaultButton = Alert::Default::FirstButton}) == 0;
}

void CopyReview::applied(const QList<FileChange>& chosen, const Result<void>& outcome) {
    m_applying = false;
    Q_EMIT busyChanged();
    if (!outcome) {
        setMessage(outcome.error().message);
        return;
    }
    setMessage(tr("Applied %1 files. Originals are saved in the run’s backup folder.").arg(chosen.size()));
    ProjectFiles& files = m_workspace.files();
    files.refreshFiles();
    const auto open = files.selectedFile();
    if (!open || !m_run) return;
    const bool isApplied = std::ranges::any_of(
        chosen, [&](const FileChange& change) { return m_run->project.child(change.path) == *open; });
    if (isApplied) files.reloadFile();
}

void CopyReview::setMessage(const QString& message) {
    if (assign(m_message, message)) Q_EMIT messageChanged();
}

}  // namespace orvo
