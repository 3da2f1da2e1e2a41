#pragma once

#include "platform/Result.h"
#include "team_runs/TeamRun.h"

namespace orvo::ctl {

class Invocation;

/// Where team runs are recorded.
FilePath runsFolder();

/// The recorded run that the call's first argument means. The error's message is for the person.
Result<TeamRun> runOf(const Invocation& invocation);

struct ReviewedCopy {
    TeamRun run;
    RunCopy copy;
};
/// The run and the copy that the first two arguments mean.
Result<ReviewedCopy> copyOf(const Invocation& invocation);

/// Says on standard error which applies a former process did not finish, and where the originals are.
void reportUnfinishedApplies();

}  // namespace orvo::ctl
