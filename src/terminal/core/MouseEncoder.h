#pragma once

#include "terminal/core/KeyEncoder.h"

#include <string>

namespace orvo {

enum class MouseButton : std::uint8_t {
    Left,
    Middle,
    Right,
    None,
    WheelUp,
    WheelDown,
    WheelLeft,
    WheelRight
};
enum class MouseAction : std::uint8_t { Press, Release, Move };
enum class MouseForm : std::uint8_t { Classic, Sgr };

struct MouseEvent {
    MouseAction action = MouseAction::Press;
    /// For a movement the one that is held, if any.
    MouseButton button = MouseButton::Left;
    KeyModifiers modifiers;
    /// 0-based, on the screen.
    int row = 0;
    int column = 0;
};

/// What a program that asked for the mouse is sent. Empty for what the form cannot tell: the classic one ends
/// at column and row 223.
std::string encodeMouse(const MouseEvent& event, MouseForm form);

}  // namespace orvo
