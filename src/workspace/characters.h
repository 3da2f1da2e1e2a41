#pragma once

#include <QString>

namespace orvo {

/// The first `count` characters as a person counts them (grapheme clusters).
QString firstCharacters(const QString& text, int count);

}  // namespace orvo
