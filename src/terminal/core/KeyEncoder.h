#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace orvo {

/// Keys that send a sequence of their own; everything else is typed text.
enum class TerminalKey : std::uint8_t {
    Up,
    Down,
    Right,
    Left,
    /// The middle key of a keypad whose digits are off.
    Begin,
    Home,
    End,
    Insert,
    Delete,
    PageUp,
    PageDown,
    F1,
    F2,
    F3,
    F4,
    F5,
    F6,
    F7,
    F8,
    F9,
    F10,
    F11,
    F12,
    Backspace,
    /// Of the main block or of the keypad.
    Return,
    Tab,
    Escape,
};

/// Modifiers held with a key. The bits are those that xterm adds to 1 in `ESC [ 1 ; m A`.
struct KeyModifiers {
    enum Bit : std::uint8_t { None = 0, Shift = 1, Alt = 2, Control = 4 };

    std::uint8_t bits = None;

    constexpr bool shift() const { return (bits & Shift) != 0; }
    constexpr bool alt() const { return (bits & Alt) != 0; }
    constexpr bool control() const { return (bits & Control) != 0; }
    constexpr bool any() const { return bits != None; }
};

enum class CursorKeys : std::uint8_t { Normal, Application };
enum class Keypad : std::uint8_t { Normal, Application };
enum class PasteBrackets : std::uint8_t { Off, On };

/// What a key sends to the program, in the form of the terminfo entry xterm-256color.
std::string encodeKey(TerminalKey key, KeyModifiers modifiers, CursorKeys mode);

/// What a key of the keypad sends while its digits are off; in application mode corners, middle and Enter
/// have sequences of their own.
std::string encodeKeypadKey(TerminalKey key, KeyModifiers modifiers, CursorKeys mode, Keypad keypad);

/// What typed text sends: the text itself, with ESC in front while Alt is held.
std::string encodeText(std::string_view utf8, KeyModifiers modifiers);

/// The control character that Control makes of a printable ASCII character, if there is one.
std::optional<char> controlCharacter(char32_t character);

/// What a paste sends. Between brackets every control character but tab, line feed and carriage return is
/// removed, so that nothing pasted can end the bracket or act on the line discipline; without brackets
/// nothing is changed.
std::string encodePaste(std::string_view utf8, PasteBrackets brackets);

}  // namespace orvo
