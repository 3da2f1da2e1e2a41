#include "terminal/core/TextStyle.h"

#include <algorithm>
#include <array>
#include <span>
#include <string_view>

namespace orvo {
namespace {

constexpr std::array<std::uint32_t, 16> namedColors = {
    0x182538, 0xF4808A, 0x83DFC0, 0xF6D28B, 0x7AAAF7, 0xC5A0EF, 0x62DCDD, 0xD7E2EF,
    0x6B819A, 0xFFA0A8, 0xA2EECF, 0xFFE7B0, 0xA1C1FF, 0xDABEFF, 0x9AEFF0, 0xFFFFFF,
};

constexpr std::array<std::uint8_t, 6> cubeLevels = {0, 95, 135, 175, 215, 255};

constexpr Rgb computeColor(int number) {
    if (number < 16) {
        const std::uint32_t color = namedColors[static_cast<std::size_t>(number)];
        return {static_cast<std::uint8_t>(color >> 16), static_cast<std::uint8_t>(color >> 8),
                static_cast<std::uint8_t>(color)};
    }
    if (number < 232) {
        const auto level = [cube = number - 16](int divisor) {
            return cubeLevels[static_cast<std::size_t>(cube / divisor % 6)];
        };
        return {level(36), level(6), level(1)};
    }
    const auto grey = static_cast<std::uint8_t>(std::min(8 + 10 * (number - 232), 255));
    return {grey, grey, grey};
}

constexpr std::array<CellColor, 256> indexedColors = [] {
    std::array<CellColor, 256> colors;
    for (int index = 0; index < 256; ++index) {
        colors[static_cast<std::size_t>(index)] = CellColor(computeColor(index));
    }
    return colors;
}();

std::uint8_t component(int parameter) {
    return static_cast<std::uint8_t>(std::min(parameter, 255));
}

/// Reads the colour behind a 38, 48 or 58 at the front of `parameters`, and returns how many of them it took.
inline std::size_t extendedColor(std::span<const int> parameters, CellColor& color) {
    if (parameters.size() > 2 && parameters[1] == 5) {
        color = indexedColor(parameters[2]);
        return 3;
    }
    if (parameters.size() > 4 && parameters[1] == 2) {
        color = CellColor(Rgb{component(parameters[2]), component(parameters[3]), component(parameters[4])});
        return 5;
    }
    color = CellColor();
    return 1;
}

void switchOn(TerminalCell& style, TerminalCell::Attribute attribute) {
    style.attributes |= attribute;
}

void switchOff(TerminalCell& style, int attributes) {
    style.attributes &= static_cast<std::uint16_t>(~attributes);
}

void clear(TextStyle& style) {
    const std::uint16_t extra = style.cell.extra;
    style = {};
    style.cell.extra = extra;
}

void applyColor(TextStyle& style, int parameter) {
    TerminalCell& cell = style.cell;
    if (parameter >= 30 && parameter <= 37) cell.foreground = indexedColor(parameter - 30);
    if (parameter >= 90 && parameter <= 97) cell.foreground = indexedColor(parameter - 90 + 8);
    if (parameter >= 40 && parameter <= 47) cell.background = indexedColor(parameter - 40);
    if (parameter >= 100 && parameter <= 107) cell.background = indexedColor(parameter - 100 + 8);
    if (parameter == 39) cell.foreground = {};
    if (parameter == 49) cell.background = {};
    if (parameter == 59) style.underlineColor = {};
}

void applyOne(TextStyle& style, int parameter) {
    using Underline = TerminalCell::Underline;
    TerminalCell& cell = style.cell;
    switch (parameter) {
        case 0:
            return clear(style);
        case 1:
            return switchOn(cell, TerminalCell::Bold);
        case 2:
            return switchOn(cell, TerminalCell::Dim);
        case 3:
            return switchOn(cell, TerminalCell::Italic);
        case 4:
            return cell.setUnderline(Underline::Single);
        case 7:
            return switchOn(cell, TerminalCell::Inverse);
        case 8:
            return switchOn(cell, TerminalCell::Conceal);
        case 9:
            return switchOn(cell, TerminalCell::Strike);
        case 21:
            return cell.setUnderline(Underline::Double);
        case 22:
            return switchOff(cell, TerminalCell::Bold | TerminalCell::Dim);
        case 23:
            return switchOff(cell, TerminalCell::Italic);
        case 24:
            return cell.setUnderline(Underline::None);
        case 27:
            return switchOff(cell, TerminalCell::Inverse);
        case 28:
            return switchOff(cell, TerminalCell::Conceal);
        case 29:
            return switchOff(cell, TerminalCell::Strike);
        case 53:
            return switchOn(cell, TerminalCell::Overline);
        case 55:
            return switchOff(cell, TerminalCell::Overline);
        default:
            applyColor(style, parameter);
    }
}

/// Where the colour goes that a parameter begins, if it begins one.
CellColor* extendedTarget(TextStyle& style, int parameter) {
    switch (parameter) {
        case 38:
            return &style.cell.foreground;
        case 48:
            return &style.cell.background;
        case 58:
            return &style.underlineColor;
        default:
            return nullptr;
    }
}

/// The numbers between the colons of one field; more than any known form has are counted only.
class ColonField {
public:
    explicit ColonField(std::string_view text) {
        for (;;) {
            const std::size_t length = std::min(text.find(':'), text.size());
            if (m_count < m_parts.size()) m_parts[m_count] = text.substr(0, length);
            ++m_count;
            if (length == text.size()) return;
            text.remove_prefix(length + 1);
        }
    }
    std::size_t count() const { return m_count; }
    /// An empty part is 0, as is one that is missing or no number.
    int number(std::size_t index) const {
        if (index >= std::min(m_count, m_parts.size())) return 0;
        int value = 0;
        for (const char byte : m_parts[index]) {
            if (byte < '0' || byte > '9') return 0;
            value = std::min(value * 10 + (byte - '0'), 1'000'000);
        }
        return value;
    }
    bool isNumber(std::size_t index) const {
        return index < m_count && m_parts[index].find_first_not_of("0123456789") == std::string_view::npos;
    }

private:
    std::array<std::string_view, 8> m_parts;
    std::size_t m_count = 0;
};

/// "4:3", "38:5:n", "38:2:r:g:b" and "38:2::r:g:b"; anything else changes nothing.
void applyColonField(TextStyle& style, std::string_view text) {
    const ColonField field(text);
    if (!field.isNumber(0) || !field.isNumber(1)) return;
    if (field.number(0) == 4) {
        if (field.count() == 2 && field.number(1) <= 5)
            style.cell.setUnderline(static_cast<TerminalCell::Underline>(field.number(1)));
        return;
    }
    CellColor* const color = extendedTarget(style, field.number(0));
    if (color == nullptr) return;
    if (field.number(1) == 5 && field.count() > 2) *color = indexedColor(field.number(2));
    if (field.number(1) == 2 && field.count() > 4) {
        // With a fourth field the first one names a colour space.
        const std::size_t red = field.count() == 5 ? 2 : 3;
        *color = CellColor(Rgb{component(field.number(red)), component(field.number(red + 1)),
                               component(field.number(red + 2))});
    }
}

void applyParameters(TextStyle& style, std::span<const int> parameters) {
    while (!parameters.empty()) {
        std::size_t taken = 1;
        // The two that full-screen programs send with every other cell come first.
        if (parameters.front() == 38) {
            taken = extendedColor(parameters, style.cell.foreground);
        } else if (parameters.front() == 48) {
            taken = extendedColor(parameters, style.cell.background);
        } else if (parameters.front() == 58) {
            taken = extendedColor(parameters, style.underlineColor);
        } else {
            applyOne(style, parameters.front());
        }
        parameters = parameters.subspan(taken);
    }
}

}  // namespace

CellColor indexedColor(int number) {
    if (number < 256) return indexedColors[static_cast<std::size_t>(number)];
    return CellColor(computeColor(number));
}

void applyGraphicRendition(TextStyle& style, const ControlSequence& sequence) {
    if (sequence.colonFields.empty()) return applyParameters(style, sequence.parameters);
    // A field with colons acts by itself; where a colour takes it as a parameter it counts as 0.
    std::string_view rest = sequence.colonFields;
    std::span<const int> parameters = sequence.parameters;
    while (!parameters.empty()) {
        std::size_t taken = 1;
        const std::string_view field = rest.substr(0, rest.find(';'));
        if (field.find(':') != std::string_view::npos) {
            applyColonField(style, field);
        } else if (CellColor* const color = extendedTarget(style, parameters.front())) {
            taken = extendedColor(parameters, *color);
        } else {
            applyOne(style, parameters.front());
        }
        parameters = parameters.subspan(taken);
        for (; taken > 0; --taken) {
            rest.remove_prefix(std::min(rest.find(';'), rest.size() - 1) + 1);
        }
    }
}

}  // namespace orvo
