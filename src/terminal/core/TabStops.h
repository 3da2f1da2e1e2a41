#pragma once

#include <vector>

namespace orvo {

/// The columns at which a tab stops; at first every eighth.
class TabStops {
public:
    explicit TabStops(int columns) { setColumns(columns); }

    /// New columns get the stops that they have at first, lost ones forget theirs.
    void setColumns(int columns) {
        const auto before = static_cast<int>(m_stops.size());
        m_stops.resize(static_cast<std::size_t>(columns));
        for (int column = before; column < columns; ++column) {
            m_stops[static_cast<std::size_t>(column)] = column % distance == 0;
        }
    }
    void set(int column) { m_stops[static_cast<std::size_t>(column)] = true; }
    void clear(int column) { m_stops[static_cast<std::size_t>(column)] = false; }
    void clearAll() { m_stops.assign(m_stops.size(), false); }

    /// The next stop to the right, at the latest the last column.
    int after(int column) const {
        const auto last = static_cast<int>(m_stops.size()) - 1;
        while (column < last) {
            ++column;
            if (m_stops[static_cast<std::size_t>(column)]) break;
        }
        return column;
    }
    /// The next stop to the left, at the latest the first column.
    int before(int column) const {
        while (column > 0) {
            --column;
            if (m_stops[static_cast<std::size_t>(column)]) break;
        }
        return column;
    }

private:
    static constexpr int distance = 8;
    std::vector<bool> m_stops;
};

}  // namespace orvo
