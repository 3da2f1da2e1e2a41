#pragma once

#include "platform/FilePath.h"

#include <QString>

#include <optional>

namespace orvo::RunFiles {

/// Files of this many bytes and more are not shown.
inline constexpr qint64 previewLimit = 2'000'000;

/// The text of the file at `path` below `root`, or the sentence that stands for a file that is absent,
/// binary, too large, or reached through a link. Any thread.
QString preview(const FilePath& root, const QByteArray& path);

/// The sentence.
QString previewPlaceholder();

/// The file's bytes, when there is a regular file of at most `limit` bytes; for reviews that show
/// differences.
std::optional<QByteArray> content(const FilePath& root, const QByteArray& path, qint64 limit);

}  // namespace orvo::RunFiles
