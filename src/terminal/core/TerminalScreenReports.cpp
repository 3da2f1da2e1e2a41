// What programs ask the terminal for, and what it answers. No answer repeats text that came from a program.
#include "terminal/core/TerminalScreen.h"

#include <array>
#include <cstdio>

namespace orvo {
namespace {

constexpr int paletteSize = 256;

/// Cuts the part up to the first semicolon off the front.
std::string_view takeField(std::string_view& rest) {
    const std::size_t length = std::min(rest.find(';'), rest.size());
    const std::string_view field = rest.substr(0, length);
    rest.remove_prefix(std::min(length + 1, rest.size()));
    return field;
}

/// -1 for anything but one to three digits.
int smallNumber(std::string_view text) {
    if (text.empty() || text.size() > 3) return -1;
    int value = 0;
    for (const char byte : text) {
        if (byte < '0' || byte > '9') return -1;
        value = value * 10 + (byte - '0');
    }
    return value;
}

/// As X11 writes colours, with each channel spread over 16 bits.
std::string colorSpecification(Rgb color) {
    std::array<char, 32> text;
    const int length = std::snprintf(text.data(), text.size(), "rgb:%04x/%04x/%04x", color.red * 0x101u,
                                     color.green * 0x101u, color.blue * 0x101u);
    return {text.data(), static_cast<std::size_t>(length)};
}

}  // namespace

void TerminalScreen::report(int kind) {
    if (kind == 5) respond("\x1B[0n");
    if (kind == 6) {
        respond("\x1B[" + std::to_string(addressedRow() + 1) + ";" + std::to_string(m_cursor.column + 1) +
                "R");
    }
}

void TerminalScreen::reportPrivate(int kind) {
    if (kind == 6) {
        respond("\x1B[?" + std::to_string(addressedRow() + 1) + ";" + std::to_string(m_cursor.column + 1) +
                "R");
    }
    if (kind == 996) reportColorScheme();
}

void TerminalScreen::reportColorScheme() const {
    respond(m_colors.dark() ? "\x1B[?997;1n" : "\x1B[?997;2n");
}

void TerminalScreen::reportAttributes() const {
    respond("\x1B[?1;2c");
}

void TerminalScreen::reportSize() const {
    respond("\x1B[8;" + std::to_string(m_rows) + ";" + std::to_string(m_columns) + "t");
}

void TerminalScreen::reportMode(int mode) {
    const bool ofAlternate = mode == 47 || mode == 1047 || mode == 1049;
    const bool* const value = m_modes.privateMode(mode);
    const bool set = ofAlternate ? alternateScreen() : value != nullptr && *value;
    const int state = !ofAlternate && value == nullptr ? 0 : set ? 1 : 2;
    respond("\x1B[?" + std::to_string(mode) + ";" + std::to_string(state) + "$y");
}

/// OSC 10, 11 and 12; further fields ask for the colours that follow.
void TerminalScreen::reportColors(std::size_t first, std::string_view fields,
                                  std::string_view terminator) const {
    const std::array<Rgb, 3> colors = {m_colors.text, m_colors.background, m_colors.cursor};
    for (std::size_t index = first; index < colors.size() && !fields.empty(); ++index) {
        if (takeField(fields) != "?") continue;
        respond("\x1B]" + std::to_string(10 + index) + ";" + colorSpecification(colors[index]) +
                std::string(terminator));
    }
}

/// OSC 4: pairs of a colour's number and what to do with it.
void TerminalScreen::reportPalette(std::string_view fields, std::string_view terminator) const {
    while (!fields.empty()) {
        const int number = smallNumber(takeField(fields));
        if (takeField(fields) != "?" || number < 0 || number >= paletteSize) continue;
        // Every colour of the palette is one.
        const Rgb color = indexedColor(number).color().value_or(Rgb{});
        respond("\x1B]4;" + std::to_string(number) + ";" + colorSpecification(color) +
                std::string(terminator));
    }
}

void TerminalScreen::setColors(const TerminalColors& colors) {
    const bool turned = colors.dark() != m_colors.dark();
    m_colors = colors;
    if (turned && m_modes.colorSchemeReports) reportColorScheme();
}

void TerminalScreen::respond(std::string_view reply) const {
    if (onResponse) onResponse(reply);
}

void TerminalScreen::request(TerminalRequest::Kind kind, std::string_view text) const {
    if (onRequest) onRequest({kind, text});
}

}  // namespace orvo
