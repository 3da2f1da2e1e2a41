#pragma once

#include <QString>

namespace orvo {

/// Characters (grapheme clusters) kept of a session's text, counted from its end.
inline constexpr int maximumKeptCharacters = 60'000;
/// Bytes kept of it in UTF-8, so that piles of combining marks cannot fill the disk.
inline constexpr qsizetype maximumKeptBytes = qsizetype{1024} * 1024;

/// The end of `text` that history keeps: as much as both limits allow, cut between characters.
QString keptOutput(const QString& text);

}  // namespace orvo
