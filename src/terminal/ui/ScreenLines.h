#pragma once

#include <QString>

#include <cstdint>
#include <utility>
#include <vector>

namespace orvo {

class TerminalRow;
class TerminalScreen;

/// Lines of history and screen by a number that stays with a line while it scrolls: the first line that ever
/// left the top is 0.
using LineNumber = std::int64_t;

LineNumber firstLine(const TerminalScreen& screen);
/// One beyond the last.
LineNumber endLine(const TerminalScreen& screen);
/// Null when there is no such line (any more).
const TerminalRow* lineAt(const TerminalScreen& screen, LineNumber number);

/// A text line of a program: rows that were wrapped belong together.
struct LogicalLine {
    struct Place {
        LineNumber line = 0;
        int column = 0;
    };

    LineNumber first = 0;
    /// Number of rows.
    int rows = 0;
    QString text;
    /// Where each UTF-16 unit of `text` is, and at the end where the text ends.
    std::vector<Place> places;

    /// The line that the row belongs to; empty when there is no such row.
    static LogicalLine around(const TerminalScreen& screen, LineNumber number);
    /// The line that begins with this row.
    static LogicalLine from(const TerminalScreen& screen, LineNumber number);
    /// The offset in `text` of a cell, or of the first one behind it that has text.
    int offsetOf(Place place) const;
};

}  // namespace orvo
