#include "terminal/ui/ScreenLines.h"

#include "terminal/core/TerminalScreen.h"

#include <algorithm>

namespace orvo {
namespace {

/// A program may print without end and without a line break.
constexpr int mostRows = 200;

bool continues(const TerminalScreen& screen, LineNumber number) {
    const TerminalRow* const before = lineAt(screen, number - 1);
    return before != nullptr && before->wrapped();
}

void appendRow(LogicalLine& line, const TerminalRow& row, LineNumber number) {
    const int width = static_cast<int>(row.cells().size());
    for (int column = 0; column < width; ++column) {
        const qsizetype before = line.text.size();
        for (const char32_t scalar : row.scalars(column)) {
            if (QChar::requiresSurrogates(scalar)) {
                line.text += QChar(QChar::highSurrogate(scalar));
                line.text += QChar(QChar::lowSurrogate(scalar));
            } else {
                line.text += QChar(static_cast<char16_t>(scalar));
            }
        }
        line.places.insert(line.places.end(), static_cast<std::size_t>(line.text.size() - before),
                           {number, column});
    }
    ++line.rows;
}

void trimEnd(LogicalLine& line) {
    qsizetype length = line.text.size();
    while (length > 0 && line.text[length - 1].isSpace())
        --length;
    line.text.truncate(length);
    line.places.resize(static_cast<std::size_t>(length));
}

}  // namespace

LineNumber firstLine(const TerminalScreen& screen) {
    return static_cast<LineNumber>(screen.scrolledLines()) - screen.scrollbackCount();
}

LineNumber endLine(const TerminalScreen& screen) {
    return static_cast<LineNumber>(screen.scrolledLines()) + screen.rows();
}

const TerminalRow* lineAt(const TerminalScreen& screen, LineNumber number) {
    if (number < firstLine(screen) || number >= endLine(screen)) return nullptr;
    const auto index = static_cast<int>(number - firstLine(screen));
    const int history = screen.scrollbackCount();
    return index < history ? &screen.scrollbackLine(index) : &screen.line(index - history);
}

LogicalLine LogicalLine::around(const TerminalScreen& screen, LineNumber number) {
    for (int back = 0; back < mostRows && continues(screen, number); ++back) {
        --number;
    }
    return from(screen, number);
}

LogicalLine LogicalLine::from(const TerminalScreen& screen, LineNumber number) {
    LogicalLine line;
    line.first = number;
    int width = 0;
    for (const TerminalRow* row = lineAt(screen, number); row != nullptr; row = lineAt(screen, ++number)) {
        appendRow(line, *row, number);
        width = static_cast<int>(row->cells().size());
        if (!row->wrapped() || line.rows >= mostRows) break;
    }
    trimEnd(line);
    line.places.push_back(line.places.empty()
                              ? Place{line.first, 0}
                              : Place{line.places.back().line, line.places.back().column + 1});
    if (line.places.back().column > width) line.places.back().column = width;
    return line;
}

int LogicalLine::offsetOf(Place place) const {
    const auto at = std::ranges::lower_bound(places, std::pair(place.line, place.column), {},
                                             [](const Place& p) { return std::pair(p.line, p.column); });
    return static_cast<int>(at - places.begin());
}

}  // namespace orvo
