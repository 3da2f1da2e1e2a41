#pragma once

#include <QString>

namespace orvo {

/// Beginnings and ends of texts in characters as people count them (grapheme clusters), none cut in two.
QString firstCharacters(const QString& text, qsizetype count);
QString lastCharacters(const QString& text, qsizetype count);

/// The end of `text` that takes at most `bytes` bytes of UTF-8, without cutting a code point.
QString lastBytes(const QString& text, qsizetype bytes);

}  // namespace orvo
