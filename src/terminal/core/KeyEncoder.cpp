#include "terminal/core/KeyEncoder.h"

#include <array>

namespace orvo {
namespace {

constexpr char escape = '\x1b';
constexpr char deleteCharacter = '\x7f';

/// Cursor and function keys with a letter as final: `ESC [ X` plain, `ESC [ 1 ; m X` with modifiers.
/// `introducer` is what stands between ESC and the letter while no modifier is held.
std::string letterSequence(char final, char introducer, KeyModifiers modifiers) {
    if (modifiers.any()) return std::string{escape} + "[1;" + std::to_string(1 + modifiers.bits) + final;
    return {escape, introducer, final};
}

/// Editing and higher function keys: `ESC [ n ~` plain, `ESC [ n ; m ~` with modifiers.
std::string tildeSequence(int number, KeyModifiers modifiers) {
    std::string sequence = std::string{escape} + '[' + std::to_string(number);
    if (modifiers.any()) sequence += ';' + std::to_string(1 + modifiers.bits);
    return sequence + '~';
}

std::string functionKey(int number, KeyModifiers modifiers) {
    if (number <= 4) return letterSequence("PQRS"[number - 1], 'O', modifiers);
    // The numbers leave out 16 and 22, as on the keyboard that they come from.
    constexpr std::array<int, 8> codes{15, 17, 18, 19, 20, 21, 23, 24};
    return tildeSequence(codes[static_cast<std::size_t>(number - 5)], modifiers);
}

std::string withAlt(std::string_view bytes, KeyModifiers modifiers) {
    std::string result;
    if (modifiers.alt()) result += escape;
    return result.append(bytes);
}

/// A control character but tab, line feed and carriage return, C1 in its two-byte form included.
/// `size` receives the bytes it takes.
bool isUnsafeControl(std::string_view rest, std::size_t& size) {
    const auto byte = static_cast<unsigned char>(rest[0]);
    size = 1;
    if (byte == '\t' || byte == '\n' || byte == '\r') return false;
    if (byte < 0x20 || byte == 0x7F) return true;
    if (byte != 0xC2 || rest.size() < 2) return false;
    const auto second = static_cast<unsigned char>(rest[1]);
    size = 2;
    return second >= 0x80 && second <= 0x9F;
}

std::string withoutUnsafeControls(std::string_view text) {
    std::string kept;
    kept.reserve(text.size());
    for (std::size_t at = 0, size = 0; at < text.size(); at += size) {
        if (!isUnsafeControl(text.substr(at), size)) kept.append(text.substr(at, size));
    }
    return kept;
}

}  // namespace

std::string encodeKey(TerminalKey key, KeyModifiers modifiers, CursorKeys mode) {
    const char cursorIntroducer = mode == CursorKeys::Application ? 'O' : '[';
    switch (key) {
        case TerminalKey::Up:
            return letterSequence('A', cursorIntroducer, modifiers);
        case TerminalKey::Down:
            return letterSequence('B', cursorIntroducer, modifiers);
        case TerminalKey::Right:
            return letterSequence('C', cursorIntroducer, modifiers);
        case TerminalKey::Left:
            return letterSequence('D', cursorIntroducer, modifiers);
        case TerminalKey::Begin:
            return letterSequence('E', cursorIntroducer, modifiers);
        // Home and End keep this form in both modes; programs that know the terminfo entry know it too.
        case TerminalKey::Home:
            return letterSequence('H', '[', modifiers);
        case TerminalKey::End:
            return letterSequence('F', '[', modifiers);
        case TerminalKey::Insert:
            return tildeSequence(2, modifiers);
        case TerminalKey::Delete:
            return tildeSequence(3, modifiers);
        case TerminalKey::PageUp:
            return tildeSequence(5, modifiers);
        case TerminalKey::PageDown:
            return tildeSequence(6, modifiers);
        case TerminalKey::Backspace:
            return withAlt({modifiers.control() ? "\b" : &deleteCharacter, 1}, modifiers);
        case TerminalKey::Return:
            // Shift+Return is a new line in the editors of the assistants, which read it as Alt+Return.
            return modifiers.shift() ? "\x1b\r" : withAlt("\r", modifiers);
        case TerminalKey::Tab:
            return modifiers.shift() ? "\x1b[Z" : withAlt("\t", modifiers);
        case TerminalKey::Escape:
            return withAlt("\x1b", modifiers);
        default:
            return functionKey(static_cast<int>(key) - static_cast<int>(TerminalKey::F1) + 1, modifiers);
    }
}

std::string encodeKeypadKey(TerminalKey key, KeyModifiers modifiers, CursorKeys mode, Keypad keypad) {
    if (keypad == Keypad::Normal || modifiers.any()) return encodeKey(key, modifiers, mode);
    switch (key) {
        case TerminalKey::Home:
            return "\x1BOw";
        case TerminalKey::PageUp:
            return "\x1BOy";
        case TerminalKey::Begin:
            return "\x1BOu";
        case TerminalKey::End:
            return "\x1BOq";
        case TerminalKey::PageDown:
            return "\x1BOs";
        case TerminalKey::Return:
            return "\x1BOM";
        default:
            return encodeKey(key, modifiers, mode);
    }
}

std::string encodeText(std::string_view utf8, KeyModifiers modifiers) {
    return utf8.empty() ? std::string() : withAlt(utf8, modifiers);
}

std::optional<char> controlCharacter(char32_t character) {
    if (character >= U'a' && character <= U'z') return static_cast<char>(character - U'a' + 1);
    if (character >= U'@' && character <= U'_') return static_cast<char>(character - U'@');
    switch (character) {
        case U' ':
        case U'2':
            return '\0';
        case U'3':
            return '\x1b';
        case U'4':
            return '\x1c';
        case U'5':
            return '\x1d';
        case U'6':
            return '\x1e';
        case U'7':
        case U'/':
            return '\x1f';
        case U'8':
        case U'?':
            return deleteCharacter;
        default:
            return std::nullopt;
    }
}

std::string encodePaste(std::string_view utf8, PasteBrackets brackets) {
    if (brackets == PasteBrackets::Off) return std::string(utf8);
    return "\x1b[200~" + withoutUnsafeControls(utf8) + "\x1b[201~";
}

}  // namespace orvo
