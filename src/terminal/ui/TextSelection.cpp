#include "terminal/ui/TextSelection.h"

#include "terminal/core/TerminalScreen.h"

#include <algorithm>
#include <string>

namespace orvo {
namespace {

/// Paths and addresses are one word.
bool isWordCharacter(QChar character) {
    static const QString joining = QStringLiteral("-_./~+@%:#?&=");
    return character.isLetterOrNumber() || character.isMark() || character.isSurrogate() ||
           joining.contains(character);
}

/// The text of some cells of a row, which may begin or end within a wide character.
QString textOf(const TerminalRow& row, ColumnRange columns) {
    const int width = static_cast<int>(row.cells().size());
    if (columns.first > 0 && row.continuation(columns.first)) --columns.first;
    std::string text;
    for (int column = columns.first; column < std::min(columns.end, width); ++column) {
        text += row.text(column);
    }
    return QString::fromStdString(text);
}

QString withoutTrailingBlanks(QString text) {
    while (!text.isEmpty() && text.back().isSpace())
        text.chop(1);
    return text;
}

}  // namespace

void TextSelection::start(const TerminalScreen& screen, PointedCell at, Unit unit, Shape shape) {
    m_active = true;
    m_unit = unit;
    m_shape = shape;
    m_anchor = spanAt(screen, at);
    m_begin = m_anchor.begin;
    m_end = m_anchor.end;
    rememberLines(screen);
}

void TextSelection::extend(const TerminalScreen& screen, PointedCell to) {
    if (!m_active) return;
    const Span span = spanAt(screen, to);
    m_begin = std::min(m_anchor.begin, span.begin);
    m_end = std::max(m_anchor.end, span.end);
    rememberLines(screen);
}

TextSelection::Span TextSelection::spanAt(const TerminalScreen& screen, PointedCell at) const {
    const Edge edge{at.line, at.edge};
    if (m_unit == Unit::Cell) return {edge, edge};
    const LogicalLine line = LogicalLine::around(screen, at.line);
    if (m_unit == Unit::Line)
        return {{line.first, 0}, {line.first + std::max(line.rows, 1) - 1, screen.columns()}};

    const int offset = line.offsetOf({at.line, at.column});
    const auto length = static_cast<int>(line.text.size());
    if (offset >= length || !isWordCharacter(line.text[offset]))
        return {{at.line, at.column}, {at.line, at.column + 1}};
    int first = offset;
    while (first > 0 && isWordCharacter(line.text[first - 1]))
        --first;
    int last = offset;
    while (last + 1 < length && isWordCharacter(line.text[last + 1]))
        ++last;
    const auto& begin = line.places[static_cast<std::size_t>(first)];
    const auto& end = line.places[static_cast<std::size_t>(last)];
    const TerminalRow* const row = lineAt(screen, end.line);
    const bool wide = row != nullptr && row->continuation(end.column + 1);
    return {{begin.line, begin.column}, {end.line, end.column + (wide ? 2 : 1)}};
}

std::optional<ColumnRange> TextSelection::columnsIn(LineNumber line, int width) const {
    if (empty() || line < m_begin.line || line > m_end.line) return std::nullopt;
    ColumnRange columns{0, width};
    if (m_shape == Shape::Rectangle) {
        // Its sides are where the pointer was, whichever of the two came first.
        columns = {std::min(m_begin.column, m_end.column), std::max(m_begin.column, m_end.column)};
    } else {
        if (line == m_begin.line) columns.first = m_begin.column;
        if (line == m_end.line) columns.end = m_end.column;
    }
    columns.end = std::min(columns.end, width);
    if (columns.first >= columns.end) return std::nullopt;
    return columns;
}

QString TextSelection::text(const TerminalScreen& screen) const {
    QString text;
    if (empty()) return text;
    for (LineNumber line = std::max(m_begin.line, firstLine(screen)); line <= m_end.line; ++line) {
        const TerminalRow* const row = lineAt(screen, line);
        if (row == nullptr) break;
        const int width = screen.columns();
        const auto columns = columnsIn(line, width);
        const QString part = columns ? textOf(*row, *columns) : QString();
        const bool joined = m_shape == Shape::Running && row->wrapped() && line != m_end.line;
        text += joined ? part : withoutTrailingBlanks(part);
        if (!joined && line != m_end.line) text += u'\n';
    }
    return text;
}

void TextSelection::rememberLines(const TerminalScreen& screen) {
    m_stamps.clear();
    for (LineNumber line = m_begin.line; line <= m_end.line; ++line) {
        const TerminalRow* const row = lineAt(screen, line);
        m_stamps.push_back(row != nullptr ? row->stamp() : 0);
    }
}

bool TextSelection::holdsOn(const TerminalScreen& screen) const {
    for (std::size_t index = 0; index < m_stamps.size(); ++index) {
        const TerminalRow* const row = lineAt(screen, m_begin.line + static_cast<LineNumber>(index));
        if (row == nullptr || row->stamp() != m_stamps[index]) return false;
    }
    return true;
}

}  // namespace orvo
