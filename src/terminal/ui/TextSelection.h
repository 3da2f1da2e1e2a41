#pragma once

#include "terminal/ui/ScreenLines.h"

#include <QString>

#include <compare>
#include <cstdint>
#include <optional>
#include <vector>

namespace orvo {

/// A place that the pointer shows: the cell below it, and the edge between cells that is nearest.
struct PointedCell {
    LineNumber line = 0;
    int column = 0;
    int edge = 0;
};

/// Columns from `first` up to, not including, `end`.
struct ColumnRange {
    int first = 0;
    int end = 0;

    bool operator==(const ColumnRange&) const = default;
};

/// The part of a screen's text that the person has marked. It stays on its text while that scrolls, and is
/// gone when the text changes.
class TextSelection {
public:
    enum class Unit { Cell, Word, Line };
    enum class Shape { Running, Rectangle };

    void start(const TerminalScreen& screen, PointedCell at, Unit unit, Shape shape);
    /// Moves the end that the pointer drags.
    void extend(const TerminalScreen& screen, PointedCell to);
    void clear() { *this = {}; }
    bool empty() const { return !m_active || m_begin == m_end; }
    bool active() const { return m_active; }

    /// The selected columns of a line of this width, if any.
    std::optional<ColumnRange> columnsIn(LineNumber line, int width) const;
    /// What a copy takes: a wrapped line is one line, and blanks at the ends of lines are left out.
    QString text(const TerminalScreen& screen) const;
    /// Whether the selected lines are what they were at the last start or extension.
    bool holdsOn(const TerminalScreen& screen) const;

private:
    struct Edge {
        LineNumber line = 0;
        int column = 0;
        auto operator<=>(const Edge&) const = default;
    };
    struct Span {
        Edge begin;
        Edge end;
    };

    Span spanAt(const TerminalScreen& screen, PointedCell at) const;
    void rememberLines(const TerminalScreen& screen);

    bool m_active = false;
    Unit m_unit = Unit::Cell;
    Shape m_shape = Shape::Running;
    Span m_anchor;
    Edge m_begin;
    Edge m_end;
    std::vector<std::uint64_t> m_stamps;
};

}  // namespace orvo
