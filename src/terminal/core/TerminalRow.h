#pragma once

#include "terminal/core/TerminalCell.h"

#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace orvo {

/// One line of the grid or of the scrollback: its cells, the texts of its clusters, and a stamp.
/// Contract for readers; the screen alone writes. In the scrollback trailing blank cells are cut off.
class TerminalRow {
public:
    std::span<const TerminalCell> cells() const { return m_cells; }
    /// UTF-8 text of one cell: a scalar with its marks, " " when blank, "" for a continuation cell.
    std::string text(int column) const;
    /// The whole line without trailing white space (Unicode White_Space), as UTF-8.
    std::string plainText() const;
    /// Changes whenever the line's content changes and is never reused within a screen: a view that remembers
    /// the stamps it drew knows which lines to draw again.
    std::uint64_t stamp() const { return m_stamp; }

private:
    friend class TerminalScreen;
    std::vector<TerminalCell> m_cells;
    std::vector<std::u32string> m_clusters;
    std::uint64_t m_stamp = 0;
};

}  // namespace orvo
