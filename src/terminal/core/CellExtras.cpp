#include "terminal/core/CellExtras.h"

namespace orvo {

std::string CellExtras::keyOf(const CellExtra& extra) {
    const std::optional<Rgb> color = extra.underlineColor.color();
    // Neither part can hold a NUL: a string with control characters is no link.
    return (color ? hexOf(*color) : std::string()) + '\0' + extra.linkName + '\0' + extra.link;
}

std::optional<std::uint16_t> CellExtras::numberOf(const CellExtra& extra) {
    if (extra.empty()) return std::uint16_t{0};
    const auto [place, isNew] = m_numbers.try_emplace(keyOf(extra), std::uint16_t{0});
    if (!isNew) return place->second;
    if (!m_free.empty()) {
        place->second = m_free.back();
        m_free.pop_back();
        m_extras[place->second] = extra;
    } else if (m_extras.size() < capacity) {
        place->second = static_cast<std::uint16_t>(m_extras.size());
        m_extras.push_back(extra);
    } else {
        m_numbers.erase(place);
        return std::nullopt;
    }
    return place->second;
}

void CellExtras::keepOnly(const std::vector<bool>& used) {
    for (std::size_t number = 1; number < m_extras.size(); ++number) {
        CellExtra& extra = m_extras[number];
        if (used[number] || extra.empty()) continue;
        m_numbers.erase(keyOf(extra));
        extra = {};
        m_free.push_back(static_cast<std::uint16_t>(number));
    }
}

}  // namespace orvo
