#include "terminal/core/TerminalRow.h"

#include "terminal/core/CharacterProperties.h"
#include "terminal/core/Utf8Decoder.h"

#include <utility>

namespace orvo {
namespace {

constexpr TerminalCell blankCell;

bool holdsCluster(const TerminalCell& cell) {
    return (cell.attributes & TerminalCell::Cluster) != 0;
}

/// Whether the cell adds nothing to a line that is trimmed behind it. No cluster ends in white space.
bool isTrimmed(const TerminalCell& cell) {
    if (holdsCluster(cell)) return false;
    return cell.continuation() || (characterProperties(cell.content) & WhiteSpace) != 0;
}

}  // namespace

void TerminalRow::storeBlanks(int end) const {
    if (m_filled >= end) return;
    if (std::cmp_less(m_cells.size(), width())) makeRoom();
    std::fill(m_cells.begin() + m_filled, m_cells.begin() + end, blankCell);
    m_filled = end;
}

void TerminalRow::makeRoom() const {
    m_cells.resize(static_cast<std::size_t>(width()));
}

void TerminalRow::shrink() {
    if (std::cmp_less_equal(m_cells.capacity(), m_filled)) return;
    forgetUnusedClusters();
    m_cells.resize(static_cast<std::size_t>(m_filled));
    m_cells.shrink_to_fit();
    m_clusters.shrink_to_fit();
}

void TerminalRow::appendText(std::string& text, const TerminalCell& cell) const {
    if (holdsCluster(cell)) {
        for (const char32_t scalar : m_clusters[cell.content]) {
            appendUtf8(text, scalar);
        }
    } else if (!cell.continuation()) {
        appendUtf8(text, cell.content);
    }
}

std::string TerminalRow::text(int column) const {
    if (column < 0 || column >= m_filled) return " ";
    std::string text;
    appendText(text, m_cells[static_cast<std::size_t>(column)]);
    return text;
}

std::string TerminalRow::plainText() const {
    std::span<const TerminalCell> written(m_cells.data(), static_cast<std::size_t>(m_filled));
    while (!written.empty() && isTrimmed(written.back())) {
        written = written.first(written.size() - 1);
    }
    std::string text;
    text.reserve(written.size());
    for (const TerminalCell& cell : written) {
        appendText(text, cell);
    }
    return text;
}

void TerminalRow::setWidth(int width, std::uint64_t stamp) {
    if (width == this->width()) return;
    keepWidth(width);
    m_filled = std::min(m_filled, width);
    m_wrapped = false;
    m_stamp = stamp;
}

bool TerminalRow::join(int column, char32_t scalar, std::uint64_t stamp) {
    storeBlanks(column + 1);
    std::u32string& cluster = clusterOf(m_cells[static_cast<std::size_t>(column)]);
    if (cluster.size() >= longestCluster) return false;
    cluster.push_back(scalar);
    m_stamp = stamp;
    return true;
}

std::u32string_view TerminalRow::scalars(int column) const {
    static constexpr char32_t blank = U' ';
    if (column < 0 || column >= m_filled) return {&blank, 1};
    const TerminalCell& cell = m_cells[static_cast<std::size_t>(column)];
    if (holdsCluster(cell)) return m_clusters[cell.content];
    if (cell.continuation()) return {};
    static_assert(sizeof(cell.content) == sizeof(char32_t));
    return {reinterpret_cast<const char32_t*>(&cell.content), 1};
}

void TerminalRow::markExtras(std::vector<bool>& used) const {
    for (const TerminalCell& cell : std::span(m_cells.data(), static_cast<std::size_t>(m_filled))) {
        if (cell.extra < used.size()) used[cell.extra] = true;
    }
}

std::u32string& TerminalRow::clusterOf(TerminalCell& cell) {
    if (holdsCluster(cell)) return m_clusters[cell.content];
    if (m_clusters.size() >= 2 * static_cast<std::size_t>(width())) forgetUnusedClusters();
    std::u32string& cluster = m_clusters.emplace_back();
    if (!cell.continuation()) cluster.push_back(cell.content);
    cell.content = static_cast<std::uint32_t>(m_clusters.size() - 1);
    cell.attributes |= TerminalCell::Cluster;
    return cluster;
}

void TerminalRow::forgetUnusedClusters() {
    std::vector<std::u32string> used;
    for (TerminalCell& cell : std::span(m_cells.data(), static_cast<std::size_t>(m_filled))) {
        if (!holdsCluster(cell)) continue;
        used.push_back(std::move(m_clusters[cell.content]));
        cell.content = static_cast<std::uint32_t>(used.size() - 1);
    }
    m_clusters = std::move(used);
}

void TerminalRow::erase(int first, int end, const TerminalCell& blank, std::uint64_t stamp) {
    end = std::min(end, width());
    if (end == width()) m_wrapped = false;
    if (blank == blankCell) {
        if (first >= m_filled) return;
        if (end >= m_filled) {
            m_filled = first;
            m_stamp = stamp;
            return;
        }
    }
    if (first < end) std::fill_n(overwrite(first, end - first, stamp), end - first, blank);
}

void TerminalRow::insertCells(int column, int count, const TerminalCell& blank, std::uint64_t stamp) {
    count = std::min(count, width() - column);
    if (count <= 0 || (column >= m_filled && blank == blankCell)) return;
    const int moved = std::max(0, std::min(m_filled, width() - count) - column);
    TerminalCell* const cells = overwrite(column, count + moved, stamp);
    std::copy_backward(cells, cells + moved, cells + moved + count);
    std::fill_n(cells, count, blank);
}

void TerminalRow::removeCells(int column, int count, const TerminalCell& blank, std::uint64_t stamp) {
    count = std::min(count, width() - column);
    if (count <= 0 || (column >= m_filled && blank == blankCell)) return;
    if (blank != blankCell) storeBlanks(width());
    const int moved = std::max(0, m_filled - column - count);
    const auto cells = m_cells.begin() + column;
    std::copy(cells + count, cells + count + moved, cells);
    m_filled = column + moved;
    m_stamp = stamp;
    if (blank != blankCell) std::fill_n(overwrite(m_filled, count, stamp), count, blank);
}

bool TerminalRow::consistent() const {
    if (m_filled < 0 || m_filled > width() || std::cmp_less(m_cells.size(), m_filled)) return false;
    if (m_clusters.size() > 2 * std::max<std::size_t>(1, m_cells.size())) return false;
    return std::ranges::all_of(std::span(m_cells.data(), static_cast<std::size_t>(m_filled)),
                               [this](const auto& cell) {
                                   if (!holdsCluster(cell)) return cell.content <= U'\U0010FFFF';
                                   if (cell.content >= m_clusters.size()) return false;
                                   const std::size_t length = m_clusters[cell.content].size();
                                   return length >= 1 && length <= longestCluster;
                               });
}

}  // namespace orvo
