#pragma once

#include "platform/FilePath.h"

#include <QDateTime>
#include <QList>
#include <QString>
#include <QUuid>

#include <optional>

namespace orvo {

/// One assistant's working copy inside a run. A value.
struct RunCopy {
    /// Also names the copy's output file.
    QUuid id;
    /// Id of the assistant's connector.
    QString provider;
    /// Lies inside the run's root.
    FilePath directory;
    /// The session that runs the assistant here; absent until it is created.
    std::optional<QUuid> session;
    /// Absent while the session runs, and for ever when it ended without an exit status.
    std::optional<int> exitCode;

    bool operator==(const RunCopy&) const = default;
};

/// One task given to one to eight assistants, each in its own copy of the project. A value.
struct TeamRun {
    /// Not the name of the run folder.
    QUuid id;
    /// The task exactly as it was sent.
    QString prompt;
    FilePath project;
    FilePath root;
    /// Seconds since 1 January 2001 UTC. Kept as it is stored, so that a record survives being read and
    /// written.
    double created = 0;
    /// How far a clock may be set back, in seconds, without the order of runs suffering. One that was wrong
    /// by more is not believed instead of the present one.
    static constexpr double clockCorrection = 24 * 60 * 60;
    /// In the order in which the assistants were selected.
    QList<RunCopy> copies;

    bool operator==(const TeamRun&) const = default;

    /// A moment 30,000 years away at the most, whatever was read.
    QDateTime createdTime() const;
    static double secondsOf(const QDateTime& time);

    FilePath baseline() const { return root.child("baseline"); }
    FilePath outputFile(const RunCopy& copy) const;
    /// A fresh name at each call: every apply has a backup folder of its own.
    FilePath newBackupFolder() const;
};

/// One JSON object, as docs/formats/run.md tells.
QByteArray encodeTeamRun(const TeamRun& run);
/// Nothing when a required key is missing or anything has another type than it should.
std::optional<TeamRun> decodeTeamRun(const QByteArray& json);

/// The canonical text of an identifier: upper case, hyphens, no braces.
QString uuidText(const QUuid& id);
/// Nothing unless `text` has the 36 characters of the canonical form, in either case.
std::optional<QUuid> uuidFromText(const QString& text);

}  // namespace orvo
