#include "team_runs/RunStore.h"

#include "platform/listFolder.h"
#include "platform/readFile.h"
#include "platform/saveAtomically.h"
#include "platform/textEnds.h"

#include <algorithm>
#include <cstdio>

namespace orvo::RunStore {
namespace {

// Far above any record of ours (a prompt and eight copies), far below what would be felt.
constexpr qsizetype maximumRecordBytes = 16 << 20;

FilePath recordFile(const FilePath& root) {
    return root.child("run.json");
}

void putAsideIfDamaged(const FilePath& file) {
    const Result<QByteArray> content = readFile(file, maximumRecordBytes);
    if (!content || decodeTeamRun(*content)) return;
    // When it cannot be put aside, saving says what is wrong with the folder.
    std::rename(file.bytes().constData(), (file.bytes() + ".damaged").constData());
}

}  // namespace

std::optional<QList<TeamRun>> load(const FilePath& runsFolder) {
    const Result<QList<QByteArray>> names = listFolder(runsFolder);
    if (!names) return std::nullopt;
    QList<TeamRun> runs;
    for (const QByteArray& name : *names) {
        if (const auto run = loadRun(runsFolder.child(name))) insertByAge(runs, *run);
    }
    return runs;
}

void insertByAge(QList<TeamRun>& runs, const TeamRun& run) {
    runs.insert(std::ranges::upper_bound(runs, run.created, std::ranges::greater(), &TeamRun::created), run);
}

double nextDate(const QList<TeamRun>& runs, double now) {
    constexpr double step = 0.001;
    double date = now;
    for (const TeamRun& run : runs) {
        if (run.created < now + TeamRun::clockCorrection) date = std::max(date, run.created + step);
    }
    return date;
}

std::optional<TeamRun> loadRun(const FilePath& root) {
    const Result<QByteArray> content = readFile(recordFile(root), maximumRecordBytes);
    if (!content) return std::nullopt;
    return decodeTeamRun(*content);
}

Result<void> save(const TeamRun& run) {
    const FilePath file = recordFile(run.root);
    putAsideIfDamaged(file);
    return saveAtomically(file, encodeTeamRun(run));
}

Result<void> saveOutput(const TeamRun& run, const RunCopy& copy, const QString& text) {
    const QString end = lastBytes(lastCharacters(text, maximumOutputCharacters), maximumOutputBytes);
    return saveAtomically(run.outputFile(copy), end.toUtf8());
}

std::optional<QString> output(const TeamRun& run, const RunCopy& copy) {
    // Another program may have written more than we do; the bound only keeps the size sane.
    const Result<QByteArray> content = readFile(run.outputFile(copy), 16 * maximumOutputBytes);
    if (!content) return std::nullopt;
    return QString::fromUtf8(*content);
}

}  // namespace orvo::RunStore
