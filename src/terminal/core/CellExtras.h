#pragma once

#include "terminal/core/TerminalCell.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace orvo {

/// What few cells have: an underline of its own colour, a link.
struct CellExtra {
    CellColor underlineColor;
    /// An address, empty for none; not checked.
    std::string link;
    /// The program's name for it: cells of one name and address are one link.
    std::string linkName;

    bool empty() const { return underlineColor.isDefault() && link.empty(); }
    bool operator==(const CellExtra&) const = default;
};

/// The extras of a screen's cells by number. There are never more than `capacity`, so that a program that
/// makes up links without end needs no memory: whoever finds the table full tells which are in use.
class CellExtras {
public:
    static constexpr std::size_t capacity = 4'096;
    /// A longer address or name is no link.
    static constexpr std::size_t longestLink = 2'000;

    /// 0 is the number of nothing; none when the table is full.
    std::optional<std::uint16_t> numberOf(const CellExtra& extra);
    const CellExtra& at(std::uint16_t number) const {
        return m_extras[number < m_extras.size() ? number : 0];
    }
    /// Forgets those whose entry in `used` is false.
    void keepOnly(const std::vector<bool>& used);

private:
    static std::string keyOf(const CellExtra& extra);

    std::vector<CellExtra> m_extras{CellExtra()};
    std::vector<std::uint16_t> m_free;
    std::unordered_map<std::string, std::uint16_t> m_numbers;
};

}  // namespace orvo
