#pragma once

#include <QString>

namespace orvo {

/// The same text with everything that is invisible or turns the reading direction written out, such as
/// "⟨U+202E⟩": what the person confirms is then what will be sent.
QString visibleText(const QString& text);

}  // namespace orvo
