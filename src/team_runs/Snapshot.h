#pragma once

#include "platform/FilePath.h"
#include "platform/Result.h"
#include "team_runs/FileMap.h"

#include <QList>

#include <functional>
#include <stop_token>

namespace orvo::RunFiles {

/// How far a copy has come. Files and bytes count once, however many folders they are written to.
struct CopyProgress {
    int files = 0;
    int allFiles = 0;
    qint64 bytes = 0;
    qint64 allBytes = 0;

    bool operator==(const CopyProgress&) const = default;
};

struct CopyOptions {
    /// Ends the copy soon, with an error; what was written stays for the caller to remove.
    std::stop_token stop = {};
    /// Called now and then, and at the end, from any thread but never from two at once. May be empty.
    std::function<void(const CopyProgress&)> progress = {};
};

struct CopySummary {
    int files = 0;
    /// Bytes really copied.
    qint64 bytes = 0;
};

/// Copies the project's files, with their permissions and times, into each of `destinations`, which are
/// created and hold equal content afterwards, even when the project changes meanwhile. The limits hold for
/// what is really copied. Blocks; uses a few threads of its own. Any thread.
Result<CopySummary> snapshot(const FilePath& project, const QList<FilePath>& destinations,
                             const CopyOptions& options = {});

/// `count` copies of a baseline in folders of `destinationRoot` that are named as in a run.
Result<QList<FilePath>> copies(const FilePath& baseline, int count, const FilePath& destinationRoot,
                               const CopyOptions& options = {});

/// A fresh name for a folder inside "Runs" or inside a run.
QByteArray freshFolderName();

}  // namespace orvo::RunFiles
