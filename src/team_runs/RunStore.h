#pragma once

#include "platform/Result.h"
#include "team_runs/TeamRun.h"

namespace orvo {

/// Run records and recorded outputs on disk, see docs/formats/run.md. Any thread, one at a time.
namespace RunStore {

/// Bounds of one recorded output, counted from the text's end.
inline constexpr qsizetype maximumOutputCharacters = 60'000;
inline constexpr qsizetype maximumOutputBytes = 1 << 20;

/// The records in the folders of `runsFolder`, newest first. One that cannot be read or decoded hides only
/// itself. Nothing when the folder cannot be listed, for example because there was no run yet.
std::optional<QList<TeamRun>> load(const FilePath& runsFolder);

/// Puts a run where it belongs in a list that is newest first; after those of the same moment.
void insertByAge(QList<TeamRun>& runs, const TeamRun& run);

/// The date (`TeamRun::created`) of a run that is made at `now`: after all `runs`, also when the clock has
/// been set back meanwhile.
double nextDate(const QList<TeamRun>& runs, double now);

/// The record in one run folder.
std::optional<TeamRun> loadRun(const FilePath& root);

/// Writes the record to its root. A file there that is no record is put aside as "run.json.damaged" first.
Result<void> save(const TeamRun& run);

/// Writes the end of an assistant's terminal text beside the record.
Result<void> saveOutput(const TeamRun& run, const RunCopy& copy, const QString& text);
std::optional<QString> output(const TeamRun& run, const RunCopy& copy);

}  // namespace RunStore

}  // namespace orvo
