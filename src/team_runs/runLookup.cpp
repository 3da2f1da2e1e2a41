#include "team_runs/runLookup.h"

#include "team_runs/runError.h"

#include <QCoreApplication>

#include <algorithm>

namespace orvo {

Result<TeamRun> findRun(const QList<TeamRun>& runs, const QString& text, const QDateTime& now) {
    if (runs.isEmpty()) {
        return RunFiles::refusal(QCoreApplication::translate("RunLookup", "There are no team runs yet."));
    }
    if (text == u"latest") {
        const double limit = TeamRun::secondsOf(now) + TeamRun::clockCorrection;
        const auto latest =
            std::ranges::find_if(runs, [limit](const TeamRun& run) { return run.created < limit; });
        return latest == runs.end() ? runs.front() : *latest;
    }
    QList<TeamRun> found;
    std::ranges::copy_if(runs, std::back_inserter(found), [&text](const TeamRun& run) {
        return !text.isEmpty() && uuidText(run.id).startsWith(text, Qt::CaseInsensitive);
    });
    if (found.size() == 1) return found.front();
    if (found.isEmpty()) {
        return RunFiles::refusal(
            QCoreApplication::translate("RunLookup", "No team run matches \"%1\".").arg(text));
    }
    return RunFiles::refusal(
        QCoreApplication::translate("RunLookup", "\"%1\" is the beginning of several team runs.").arg(text));
}

Result<RunCopy> findCopy(const TeamRun& run, const QString& text) {
    const auto named = std::ranges::find(run.copies, text, &RunCopy::provider);
    if (named != run.copies.end()) return *named;
    bool isNumber = false;
    const int number = text.toInt(&isNumber);
    if (isNumber && number >= 1 && number <= run.copies.size()) return run.copies[number - 1];
    return RunFiles::refusal(
        QCoreApplication::translate("RunLookup", "No copy of this run matches \"%1\".").arg(text));
}

}  // namespace orvo
