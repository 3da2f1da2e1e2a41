#pragma once

#include "terminal/core/TerminalRow.h"

#include <cstdint>
#include <deque>
#include <utility>
#include <vector>

namespace orvo {

/// Owns every row of one screen. Grids and scrollback hold handles, so that scrolling moves handles instead
/// of cells, and rows that are given back are used again.
class RowStore {
public:
    /// A row with anything in it, for the caller to clear.
    TerminalRow* take();
    /// Null is allowed, and nothing.
    void giveBack(TerminalRow* row) {
        if (row != nullptr) m_free.push_back(row);
    }
    /// Gives the memory of the rows back that nobody uses.
    void compact();

private:
    std::deque<TerminalRow> m_rows;
    std::vector<TerminalRow*> m_free;
};

/// The visible lines of a screen, top to bottom.
class LineGrid {
public:
    int size() const { return static_cast<int>(m_lines.size()); }
    TerminalRow*& line(int row) { return m_lines[slot(row)]; }
    TerminalRow* line(int row) const { return m_lines[slot(row)]; }

    /// The line at `top` goes to `bottom`, those between them one up.
    void rotateUp(int top, int bottom) {
        if (top != 0 || bottom != size() - 1) return rotatePart(top, bottom);
        m_first = m_first + 1 == m_lines.size() ? 0 : m_first + 1;
    }
    /// The line at `bottom` goes to `top`, those between them one down.
    void rotateDown(int top, int bottom);

    /// All handles in order, for operations that change how many there are.
    std::vector<TerminalRow*>& handles();

private:
    void rotatePart(int top, int bottom);
    std::size_t slot(int row) const {
        const std::size_t position = m_first + static_cast<std::size_t>(row);
        return position < m_lines.size() ? position : position - m_lines.size();
    }

    std::vector<TerminalRow*> m_lines;
    // Where the top line is: scrolling the whole screen moves this alone.
    std::size_t m_first = 0;
};

/// The newest lines that left the top of the main screen, in a ring.
class Scrollback {
public:
    static constexpr int capacity = 2'000;

    int size() const { return static_cast<int>(m_lines.size()); }
    /// 0 is the oldest.
    TerminalRow* line(int index) const;
    /// Adds the newest line; the oldest one is handed out when there is no room for both, else null.
    TerminalRow* push(TerminalRow* row) {
        if (size() < capacity) {
            m_lines.push_back(row);
            return nullptr;
        }
        TerminalRow* const dropped = std::exchange(m_lines[m_oldest], row);
        m_oldest = m_oldest + 1 == m_lines.size() ? 0 : m_oldest + 1;
        return dropped;
    }
    void clear(RowStore& store);

private:
    std::vector<TerminalRow*> m_lines;
    std::size_t m_oldest = 0;
};

}  // namespace orvo
