// The screen as a whole: its size, its text, its invariants.
#include "terminal/core/TerminalScreen.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <unordered_set>

namespace orvo {
namespace {

constexpr int fewestRows = 3;
constexpr int fewestColumns = 10;

void require(bool condition, const char* rule) {
    if (condition) return;
    std::fprintf(stderr, "terminal screen: broken invariant: %s\n", rule);
    std::abort();
}

}  // namespace

TerminalRow* TerminalScreen::blankLine(int columns) {
    TerminalRow* const row = m_store.take();
    row->clear(columns, nextStamp());
    return row;
}

void TerminalScreen::fillGrid(LineGrid& grid) {
    while (grid.size() < m_rows) {
        grid.handles().push_back(blankLine(m_columns));
    }
}

void TerminalScreen::releaseGrid(LineGrid& grid) {
    for (TerminalRow* const row : grid.handles()) {
        m_store.giveBack(row);
    }
    grid.handles().clear();
}

void TerminalScreen::reset() {
    for (TerminalRow* const row : m_grid.handles()) {
        row->clear(m_columns, nextStamp());
    }
    m_cursor = {};
    m_style = {};
    m_link = {};
    m_pendingWrap = false;
    useWholeRegion();
}

void TerminalScreen::compact() {
    for (int index = 0; index < scrollbackCount(); ++index) {
        m_scrollback.line(index)->shrink();
    }
    m_store.compact();
}

void TerminalScreen::resize(int rows, int columns) {
    rows = std::max(rows, fewestRows);
    columns = std::max(columns, fewestColumns);
    if (rows == m_rows && columns == m_columns) return;
    reshape(m_grid, m_cursor, alternateScreen() ? KeepHistory::No : KeepHistory::Yes, rows, columns);
    if (m_savedMain) reshape(m_savedMain->grid, m_savedMain->cursor, KeepHistory::Yes, rows, columns);
    m_rows = rows;
    m_columns = columns;
    m_tabStops.setColumns(columns);
    useWholeRegion();
    m_pendingWrap = false;
#ifndef NDEBUG
    assertInvariants();
#endif
}

/// Keeps the cursor line and everything above it, on the grid or in the scrollback; lines below may be lost.
void TerminalScreen::reshape(LineGrid& grid, Cursor& cursor, KeepHistory history, int rows, int columns) {
    std::vector<TerminalRow*>& lines = grid.handles();
    const int excess = std::max(cursor.row - rows + 1, 0);
    for (TerminalRow* const row : std::span(lines.data(), static_cast<std::size_t>(excess))) {
        m_store.giveBack(history == KeepHistory::Yes ? pushScrollback(row) : row);
    }
    lines.erase(lines.begin(), lines.begin() + excess);
    while (std::cmp_greater(lines.size(), rows)) {
        m_store.giveBack(lines.back());
        lines.pop_back();
    }
    for (TerminalRow* const row : lines) {
        row->setWidth(columns, nextStamp());
    }
    while (std::cmp_less(lines.size(), rows)) {
        lines.push_back(blankLine(columns));
    }
    cursor = {cursor.row - excess, std::min(cursor.column, columns - 1)};
}

std::string TerminalScreen::plainText() const {
    std::string text;
    const auto append = [&text](const TerminalRow& row) {
        text += row.plainText();
        text += '\n';
    };
    for (int index = 0; index < scrollbackCount(); ++index) {
        append(scrollbackLine(index));
    }
    for (int row = 0; row < m_rows; ++row) {
        append(line(row));
    }
    return std::string(trimWhiteSpace(text));
}

void TerminalScreen::assertGrid() const {
    require(m_grid.size() == m_rows, "the grid has one line a row");
    for (int row = 0; row < m_rows; ++row) {
        require(line(row).width() == m_columns, "each line has one cell a column");
        require(line(row).consistent(), "each line is consistent");
    }
    require(m_cursor.row >= 0 && m_cursor.row < m_rows, "the cursor is on a line");
    require(m_cursor.column >= 0 && m_cursor.column < m_columns, "the cursor is in a column");
    require(!m_pendingWrap || m_cursor.column == m_columns - 1, "a wrap is pending in the last column only");
    require(m_scrollTop >= 0 && m_scrollBottom < m_rows, "the region lies on the screen");
    require(m_scrollTop < m_scrollBottom || m_rows == 1, "the region has at least two lines");
}

void TerminalScreen::assertInvariants() const {
    assertGrid();
    std::unordered_set<std::uint64_t> stamps;
    const auto check = [this, &stamps](const TerminalRow& row) {
        require(row.consistent(), "each kept line is consistent");
        require(row.stamp() <= m_stamp && stamps.insert(row.stamp()).second, "no two lines share a stamp");
    };
    for (int row = 0; row < m_rows; ++row) {
        check(line(row));
    }
    require(scrollbackCount() <= Scrollback::capacity, "the scrollback is bounded");
    for (int index = 0; index < scrollbackCount(); ++index) {
        check(scrollbackLine(index));
    }
    if (!m_savedMain) return;
    require(m_savedMain->grid.size() == m_rows, "the saved screen has one line a row");
    require(m_savedMain->cursor.row < m_rows && m_savedMain->cursor.column < m_columns,
            "the saved cursor is on the saved screen");
    for (int row = 0; row < m_rows; ++row) {
        require(m_savedMain->grid.line(row)->width() == m_columns, "each saved line has one cell a column");
        check(*m_savedMain->grid.line(row));
    }
}

}  // namespace orvo
