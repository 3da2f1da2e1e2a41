#pragma once

#include "platform/Result.h"
#include "team_runs/TeamRun.h"

namespace orvo {

/// The run that a person means by an id, a unique beginning of one, or "latest", which is none
/// that a clock far ahead of `now` has dated while there is another. `runs` are newest first.
Result<TeamRun> findRun(const QList<TeamRun>& runs, const QString& text, const QDateTime& now);

/// The copy meant by a connector's id or the copy's number, counted from 1.
Result<RunCopy> findCopy(const TeamRun& run, const QString& text);

}  // namespace orvo
