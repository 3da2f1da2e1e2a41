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

bool isUnsafeControl(char byte) {
    const auto code = static_cast<unsigned char>(byte);
    return (code < 0x20 && byte != '\t' && byte != '\n' && byte != '\r') || byte == deleteCharacter;
}

/// Without control characters but tab, line feed and carriage return. Those of U+0080 to U+009F go too, and
/// so do the remains of one that come together only when something between them is gone.
std::string withoutUnsafeControls(std::string_view text) {
    constexpr char c1Lead = '\xC2';
    std::string kept;
    kept.reserve(text.size());
    for (const char byte : text) {
        if (isUnsafeControl(byte)) continue;
        const auto code = static_cast<unsigned char>(byte);
        if (code >= 0x80 && code <= 0x9F && !kept.empty() && kept.back() == c1Lead) {
            kept.pop_back();
        } else {
            kept.push_back(byte);
        }
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
