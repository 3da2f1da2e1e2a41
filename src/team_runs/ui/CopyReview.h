#pragma once

#include "team_runs/TeamRuns.h"

#include <QObject>
#include <QSet>

#include <optional>

namespace orvo {

class Workspace;

/// What the Team runs page shows of the copy under review: its changes, which of them are ticked, and the
/// file that is compared. State of the page alone; nothing of it is kept. Main thread only.
class CopyReview final : public QObject {
    Q_OBJECT

public:
    /// Both contents of the file that is compared, or the sentences that stand for them.
    struct Comparison {
        QString before;
        QString after;

        bool operator==(const Comparison&) const = default;
    };

    /// Both references outlive this object.
    CopyReview(TeamRuns& teamRuns, Workspace& workspace, QObject* parent = nullptr);

    const std::optional<TeamRun>& run() const { return m_run; }
    const std::optional<RunCopy>& copy() const { return m_copy; }
    const QList<FileChange>& changes() const { return m_changes; }
    bool isSelected(const QByteArray& path) const { return m_selection.contains(path); }
    qsizetype selectedCount() const { return m_selection.size(); }
    const std::optional<QByteArray>& previewPath() const { return m_previewPath; }
    /// Of `previewPath`; nothing until it has been read.
    const std::optional<Comparison>& comparison() const { return m_comparison; }
    const QString& message() const { return m_message; }
    bool inspecting() const { return m_inspecting; }
    bool applying() const { return m_applying; }
    /// How many files of how many have been read while `inspecting`; none of none before the first are known.
    int filesRead() const { return m_filesRead; }
    int filesToRead() const { return m_filesToRead; }

    /// Reads what differs between the run's baseline and the copy, in the background.
    void review(const TeamRun& run, const RunCopy& copy);
    /// Nothing is under review any more.
    void clear();
    void setSelected(const QByteArray& path, bool selected);
    void selectAll();
    void setPreviewPath(const std::optional<QByteArray>& path);
    /// Takes the ticked changes over into the project, after the person has agreed.
    void apply();

Q_SIGNALS:
    void copyChanged();
    void changesChanged();
    void selectionChanged();
    void previewPathChanged();
    void comparisonChanged();
    void messageChanged();
    /// `inspecting` or `applying` has another value.
    void busyChanged();
    void filesReadChanged();

private:
    void reportRead(quint64 token, int files, int allFiles);
    void show(const Result<QList<FileChange>>& changes);
    bool confirm(const TeamRun& run, const QList<FileChange>& chosen);
    void applied(const QList<FileChange>& chosen, const Result<void>& outcome);
    void setMessage(const QString& message);

    TeamRuns& m_teamRuns;
    Workspace& m_workspace;
    std::optional<TeamRun> m_run;
    std::optional<RunCopy> m_copy;
    QList<FileChange> m_changes;
    QSet<QByteArray> m_selection;
    std::optional<QByteArray> m_previewPath;
    std::optional<Comparison> m_comparison;
    QString m_message;
    bool m_inspecting = false;
    bool m_applying = false;
    int m_filesRead = 0;
    int m_filesToRead = 0;
    /// Of the review on screen; a late answer to another one is dropped.
    quint64 m_reviewToken = 0;
    std::stop_source m_stopInspecting;
};

}  // namespace orvo
