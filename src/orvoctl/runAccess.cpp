#include "orvoctl/runAccess.h"

#include "orvoctl/Console.h"
#include "orvoctl/Invocation.h"
#include "platform/AppFolders.h"
#include "platform/Clock.h"
#include "team_runs/ApplyJournal.h"
#include "team_runs/RunStore.h"
#include "team_runs/runLookup.h"

namespace orvo::ctl {

FilePath runsFolder() {
    return AppFolders::fromProcess().applicationData("Runs");
}

Result<TeamRun> runOf(const Invocation& invocation) {
    const auto runs = RunStore::load(runsFolder());
    return findRun(runs.value_or(QList<TeamRun>()), invocation.positional().value(0), SystemClock().now());
}

Result<ReviewedCopy> copyOf(const Invocation& invocation) {
    const auto run = runOf(invocation);
    if (!run) return tl::unexpected(run.error());
    const auto copy = findCopy(*run, invocation.positional().value(1));
    if (!copy) return tl::unexpected(copy.error());
    return ReviewedCopy{*run, *copy};
}

void reportUnfinishedApplies() {
    for (const RunFiles::UnfinishedApply& apply : RunFiles::takeUnfinishedApplies(runsFolder()))
        printError(apply.message());
}

}  // namespace orvo::ctl
