#pragma once

#include <cstdint>

namespace orvo {

/// What of the mouse a program wants to be told.
enum class MouseReporting : std::uint8_t {
    None,
    /// Presses and releases.
    Buttons,
    /// Movement with a button held besides.
    Drags,
    /// All movement besides.
    Motion
};

enum class CursorShape : std::uint8_t { Block, Underline, Bar };

/// The switches of a terminal that programs set and reset, as they are at first. The number is the private
/// mode's, but for `insert`.
struct TerminalModes {
    bool applicationCursor = false;   // 1
    bool origin = false;              // 6
    bool autowrap = true;             // 7
    bool cursorVisible = true;        // 25
    bool mouseButtons = false;        // 1000
    bool mouseDrags = false;          // 1002
    bool mouseMotion = false;         // 1003
    bool focusReports = false;        // 1004
    bool sgrMouse = false;            // 1006
    bool alternateScroll = true;      // 1007
    bool bracketedPaste = false;      // 2004
    bool synchronizedOutput = false;  // 2026
    bool colorSchemeReports = false;  // 2031
    bool insert = false;              // 4, without "?"
    bool applicationKeypad = false;   // ESC = and ESC >

    /// The highest that is switched on rules.
    MouseReporting mouseReporting() const {
        if (mouseMotion) return MouseReporting::Motion;
        if (mouseDrags) return MouseReporting::Drags;
        return mouseButtons ? MouseReporting::Buttons : MouseReporting::None;
    }
    /// The switch of a private mode; null for a number that is none.
    bool* privateMode(int number);
};

}  // namespace orvo
