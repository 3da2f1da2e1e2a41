#pragma once

#include "terminal/core/TerminalScreen.h"

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

}  // namespace orvo::test
