#include "terminal/core/LineGrid.h"

#include <algorithm>
#include <utility>

namespace orvo {

TerminalRow* RowStore::take() {
    if (m_free.empty()) return &m_rows.emplace_back();
    TerminalRow* const row = m_free.back();
    m_free.pop_back();
    return row;
}

void RowStore::compact() {
    for (TerminalRow* const row : m_free) {
        row->clear(0, row->stamp());
        row->shrink();
    }
}

void LineGrid::rotatePart(int top, int bottom) {
    const auto first = handles().begin();
    std::rotate(first + top, first + top + 1, first + bottom + 1);
}

void LineGrid::rotateDown(int top, int bottom) {
    const auto first = handles().begin();
    std::rotate(first + top, first + bottom, first + bottom + 1);
}

std::vector<TerminalRow*>& LineGrid::handles() {
    if (m_first != 0) {
        std::rotate(m_lines.begin(), m_lines.begin() + static_cast<std::ptrdiff_t>(m_first), m_lines.end());
        m_first = 0;
    }
    return m_lines;
}

TerminalRow* Scrollback::line(int index) const {
    const std::size_t position = m_oldest + static_cast<std::size_t>(index);
    return m_lines[position < m_lines.size() ? position : position - m_lines.size()];
}

void Scrollback::clear(RowStore& store) {
    for (TerminalRow* const row : m_lines) {
        store.giveBack(row);
    }
    m_lines.clear();
    m_oldest = 0;
}

}  // namespace orvo
