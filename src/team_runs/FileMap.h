#pragma once

#include "platform/FilePath.h"
#include "platform/Result.h"

#include <stop_token>
#include <vector>

namespace orvo::RunFiles {

/// What one copy of a project may hold at most.
inline constexpr int maximumFiles = 5'000;
inline constexpr qint64 maximumBytes = 150'000'000;

/// One regular file of a folder tree.
struct MappedFile {
    /// Relative to the root, "/"-separated.
    QByteArray path;
    qint64 size = 0;
    /// Permission bits.
    int mode = 0;

    bool operator==(const MappedFile&) const = default;
};

/// The regular files of a folder tree that take part in team runs, in byte order of their whole paths. Empty
/// folders, links, pipes, sockets and devices do not appear.
using FileMap = std::vector<MappedFile>;

/// Whether an entry with this name stays out, with everything inside it: version control, dependencies, build
/// results, keys, environment files, application bundles.
bool isExcluded(QByteArrayView name);

/// Walks `root` without following links. Fails with a sentence for the person when the folder is missing,
/// cannot be read, or holds more than the limits. Any thread.
Result<FileMap> files(const FilePath& root, const std::stop_token& stop = {});

/// The same for an open folder.
Result<FileMap> files(int root, const std::stop_token& stop = {});

}  // namespace orvo::RunFiles
