#include "terminal/core/TextStyle.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace orvo {
namespace {

constexpr std::array<std::string_view, 16> namedColors = {
    "182538", "F4808A", "83DFC0", "F6D28B", "7AAAF7", "C5A0EF", "62DCDD", "D7E2EF",
    "6B819A", "FFA0A8", "A2EECF", "FFE7B0", "A1C1FF", "DABEFF", "9AEFF0", "FFFFFF",
};

constexpr std::array<std::uint8_t, 6> cubeLevels = {0, 95, 135, 175, 215, 255};

Rgb computeColor(int number) {
    if (number < 16) return colorFromHex(namedColors[static_cast<std::size_t>(number)]);
    if (number < 232) {
        const auto level = [cube = number - 16](int divisor) {
            return cubeLevels[static_cast<std::size_t>(cube / divisor % 6)];
        };
        return {level(36), level(6), level(1)};
    }
    const auto grey = static_cast<std::uint8_t>(std::min(8 + 10 * (number - 232), 255));
    return {grey, grey, grey};
}

std::uint8_t component(int parameter) {
    return static_cast<std::uint8_t>(std::min(parameter, 255));
}

/// Reads the colour behind a 38 or 48 at the front of `parameters`, and returns how many of them it took.
std::size_t extendedColor(std::span<const int> parameters, CellColor& color) {
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

void switchOff(TerminalCell& style, TerminalCell::Attribute attribute) {
    style.attributes &= static_cast<std::uint16_t>(~attribute);
}

void applyOne(TerminalCell& style, int parameter) {
    switch (parameter) {
        case 0:
            style = TerminalCell();
            break;
        case 1:
            switchOn(style, TerminalCell::Bold);
            break;
        case 22:
            switchOff(style, TerminalCell::Bold);
            break;
        case 7:
            switchOn(style, TerminalCell::Inverse);
            break;
        case 27:
            switchOff(style, TerminalCell::Inverse);
            break;
        case 39:
            style.foreground = CellColor();
            break;
        case 49:
            style.background = CellColor();
            break;
        default:
            if (parameter >= 30 && parameter <= 37) style.foreground = indexedColor(parameter - 30);
            if (parameter >= 90 && parameter <= 97) style.foreground = indexedColor(parameter - 90 + 8);
            if (parameter >= 40 && parameter <= 47) style.background = indexedColor(parameter - 40);
            if (parameter >= 100 && parameter <= 107) style.background = indexedColor(parameter - 100 + 8);
    }
}

}  // namespace

CellColor indexedColor(int number) {
    static const auto table = [] {
        std::array<CellColor, 256> colors;
        for (int index = 0; index < 256; ++index) {
            colors[static_cast<std::size_t>(index)] = CellColor(computeColor(index));
        }
        return colors;
    }();
    if (number < 256) return table[static_cast<std::size_t>(number)];
    return CellColor(computeColor(number));
}

void applyGraphicRendition(TerminalCell& style, std::span<const int> parameters) {
    while (!parameters.empty()) {
        std::size_t taken = 1;
        if (parameters.front() == 38) {
            taken = extendedColor(parameters, style.foreground);
        } else if (parameters.front() == 48) {
            taken = extendedColor(parameters, style.background);
        } else {
            applyOne(style, parameters.front());
        }
        parameters = parameters.subspan(taken);
    }
}

}  // namespace orvo
