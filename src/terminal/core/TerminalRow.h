#pragma once

#include "terminal/core/TerminalCell.h"

#include <algorithm>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace orvo {

/// One line of the grid or of the scrollback: its cells, the texts of its clusters, and a stamp.
/// A reader sees a row as const; the operations that change one belong to the screen. In the scrollback
/// trailing blank cells are cut off.
class TerminalRow {
public:
    std::span<const TerminalCell> cells() const {
        storeBlanks(width());
        return {m_cells.data(), static_cast<std::size_t>(width())};
    }
    /// UTF-8 text of one cell: a scalar with its marks, " " when blank, "" for a continuation cell.
    std::string text(int column) const;
    /// The whole line without trailing white space (Unicode White_Space), as UTF-8.
    std::string plainText() const;
    /// Changes whenever the line's content changes and is never reused within a screen: a view that remembers
    /// the stamps it drew knows which lines to draw again.
    std::uint64_t stamp() const { return m_stamp; }

    /// The scalars that one cell holds at most; marks beyond are dropped, so that a flood of them needs no
    /// memory.
    static constexpr std::size_t longestCluster = 32;

    int width() const { return static_cast<int>(m_width); }
    /// Whether the text goes on in the next line because it did not fit.
    bool wrapped() const { return m_wrapped; }
    void setWrapped() { m_wrapped = true; }
    bool continuation(int column) const {
        return column < m_filled && m_cells[static_cast<std::size_t>(column)].continuation();
    }
    /// Whether a cell's text is more than one scalar.
    bool isCluster(int column) const {
        return column < m_filled &&
               (m_cells[static_cast<std::size_t>(column)].attributes & TerminalCell::Cluster) != 0;
    }
    /// Makes the row `width` blank cells.
    void clear(int width, std::uint64_t stamp) {
        keepWidth(width);
        m_filled = 0;
        m_wrapped = false;
        m_stamp = stamp;
        if (!m_clusters.empty()) m_clusters.clear();
    }
    /// Cuts the row, or lengthens it with blank cells.
    void setWidth(int width, std::uint64_t stamp);
    void cutTrailingBlanks() {
        while (m_filled > 0 && m_cells[static_cast<std::size_t>(m_filled - 1)] == TerminalCell()) {
            --m_filled;
        }
        keepWidth(m_filled);
    }
    /// Gives memory back that the row does not need as long as it is not written.
    void shrink();

    /// The cells from `column` on, of which the caller writes all `count`; they must lie within the width.
    TerminalCell* overwrite(int column, int count, std::uint64_t stamp) {
        if (m_cells.size() < static_cast<std::size_t>(m_width)) makeRoom();
        if (column > m_filled) storeBlanks(column);
        m_filled = std::max(m_filled, column + count);
        m_stamp = stamp;
        return m_cells.data() + column;
    }
    /// As `overwrite` for as many cells as there will be: from `column` to the end of the line may be
    /// written, and `written` then tells how far.
    TerminalCell* overwriteFrom(int column) {
        if (m_cells.size() < static_cast<std::size_t>(m_width)) makeRoom();
        if (column > m_filled) storeBlanks(column);
        return m_cells.data() + column;
    }
    void written(int end, std::uint64_t stamp) {
        m_filled = std::max(m_filled, end);
        m_stamp = stamp;
    }
    /// The cells from here on are blank, whatever is stored in them.
    int writtenUpTo() const { return m_filled; }
    /// Adds a scalar to the text of a cell. False when the cell holds as many as it may.
    bool join(int column, char32_t scalar, std::uint64_t stamp);
    /// The scalars of one cell; good until the row is next changed or asked.
    std::u32string_view scalars(int column) const;
    /// Notes the numbers of the extras that the row's cells have.
    void markExtras(std::vector<bool>& used) const;
    /// Makes the cells from `first` up to, not including, `end` copies of `blank`.
    void erase(int first, int end, const TerminalCell& blank, std::uint64_t stamp);
    /// Shifts the cells from `column` on to the right; what passes the last column is lost.
    void insertCells(int column, int count, const TerminalCell& blank, std::uint64_t stamp);
    /// Shifts the cells from `column` + `count` on to the left, and fills up with `blank`.
    void removeCells(int column, int count, const TerminalCell& blank, std::uint64_t stamp);

    /// Whether the row keeps its own rules; for `TerminalScreen::assertInvariants`.
    bool consistent() const;

private:
    void storeBlanks(int end) const;
    void makeRoom() const;
    void keepWidth(int width) { m_width = static_cast<unsigned>(width) & 0x7FFF'FFFFu; }
    void appendText(std::string& text, const TerminalCell& cell) const;
    std::u32string& clusterOf(TerminalCell& cell);
    void forgetUnusedClusters();

    // Cells from m_filled on are blank, and are stored only when somebody asks for them: most lines are
    // short, and the greater part of a flood is never looked at. That is why reading may write here. There
    // may be room for fewer than the width until a cell is written.
    mutable std::vector<TerminalCell> m_cells;
    mutable int m_filled = 0;
    // Together, so that a row is one cache line.
    unsigned m_width : 31 = 0;
    bool m_wrapped : 1 = false;
    std::uint64_t m_stamp = 0;
    // Overwritten clusters stay until the table is twice as long as the row can need.
    std::vector<std::u32string> m_clusters;
};

static_assert(sizeof(TerminalRow) == 64);

}  // namespace orvo
