#pragma once

#include "terminal/core/TerminalScreen.h"

#include <gtest/gtest.h>

#include <span>
#include <string>
#include <string_view>

namespace orvo::test {

/// The visible lines as a drawing: one line of text a row, trailing blanks and trailing empty rows cut off.
inline std::string drawnRows(const TerminalScreen& screen) {
    std::string drawing;
    for (int row = 0; row < screen.rows(); ++row) {
        drawing += screen.line(row).plainText() + "\n";
    }
    drawing.erase(drawing.find_last_not_of('\n') + 1);
    return drawing;
}

inline std::string drawnScrollback(const TerminalScreen& screen) {
    std::string drawing;
    for (int index = 0; index < screen.scrollbackCount(); ++index) {
        drawing += screen.scrollbackLine(index).plainText() + "\n";
    }
    return drawing;
}

/// The cursor as "row,column", with "+" behind it while a wrap is pending.
inline std::string cursorOf(const TerminalScreen& screen) {
    return std::to_string(screen.row()) + "," + std::to_string(screen.column()) +
           (screen.pendingWrap() ? "+" : "");
}

/// Bytes in, screen out: one row of a table of cases.
struct ScreenCase {
    const char* rule;
    std::string_view bytes;
    std::string_view drawing;
    std::string_view cursor;
};

/// Feeds each case to a screen of `rows` × `columns` that shows `before`.
inline void expectCases(std::span<const ScreenCase> cases, int rows, int columns,
                        std::string_view before = {}) {
    for (const ScreenCase& example : cases) {
        SCOPED_TRACE(example.rule);
        TerminalScreen screen(rows, columns);
        screen.feed(before);
        screen.feed(example.bytes);
        screen.assertInvariants();
        EXPECT_EQ(drawnRows(screen), example.drawing);
        EXPECT_EQ(cursorOf(screen), example.cursor);
    }
}

/// The looks of a cell: foreground and background as hexadecimal digits or "-", and its attributes in words.
inline std::string describe(const TerminalCell& cell) {
    const auto color = [](CellColor value) {
        return value.isDefault() ? "-" : hexOf(*value.color());
    };
    const auto has = [&cell](TerminalCell::Attribute attribute, const char* name) {
        return (cell.attributes & attribute) != 0 ? name : "";
    };
    return color(cell.foreground) + " " + color(cell.background) + (cell.bold() ? " bold" : "") +
           (cell.inverse() ? " inverse" : "") + has(TerminalCell::Dim, " dim") +
           has(TerminalCell::Italic, " italic") +
           (cell.underline() != TerminalCell::Underline::None
                ? " underline" + std::to_string(static_cast<int>(cell.underline()))
                : "") +
           has(TerminalCell::Conceal, " conceal") + has(TerminalCell::Strike, " strike") +
           has(TerminalCell::Overline, " overline");
}

}  // namespace orvo::test
