#pragma once

#include "platform/Result.h"
#include "team_runs/TeamRun.h"

namespace orvo {

/// The run that a person means by an id, a unique beginning of one, or "latest". `runs` are newest first.
Result<TeamRun> findRun(const QList<TeamRun>& runs, const QString& text);

/// The copy meant by a connector's id or the copy's number, counted from 1.
Result<RunCopy> findCopy(const TeamRun& run, const QString& text);

}  // namespace orvo
