#pragma once

class QTextCursor;

namespace orvo {

/// What the keys of an editor do to the beginnings of lines. Each is one step to undo, and gives the cursor
/// as it stands afterwards.

/// A new line at the cursor, indented like the one before the cursor.
[[nodiscard]] QTextCursor insertIndentedLine(QTextCursor cursor);
/// Indents the selected lines by one level; without a selection over lines, goes to the next stop.
[[nodiscard]] QTextCursor indent(QTextCursor cursor);
/// Takes one level away from the selected lines, or from the line of the cursor.
[[nodiscard]] QTextCursor outdent(const QTextCursor& cursor);

}  // namespace orvo
