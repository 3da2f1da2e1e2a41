// What keys, mouse, typed text and pastes send: always a form that a program can take apart again, and never
// more than was meant.
//
// Input: a key, modifiers, modes, a position of the mouse; then text.
#include "fuzz/FuzzInput.h"
#include "terminal/core/KeyEncoder.h"
#include "terminal/core/MouseEncoder.h"

#include <array>
#include <cstdio>
#include <string>
#include <string_view>

namespace {

using namespace orvo;
using orvo::fuzz::FuzzInput;
using orvo::fuzz::require;

constexpr std::string_view pasteStart = "\x1B[200~";
constexpr std::string_view pasteEnd = "\x1B[201~";

bool isControl(char byte) {
    return static_cast<unsigned char>(byte) < 0x20 || byte == 0x7F;
}

/// One sequence or control character, ESC in front of it with Alt, and the modifiers in it where it has room.
void checkKey(const std::string& bytes, KeyModifiers modifiers) {
    // `ESC [ 2 4 ; 8 ~`.
    require(!bytes.empty() && bytes.size() <= 7, "a key sends nothing, or too much");
    require(isControl(bytes.front()), "a key types text");
    int number = 0;
    int held = 0;
    char final = 0;
    if (std::sscanf(bytes.c_str(), "\x1B[%d;%d%c", &number, &held, &final) == 3) {
        require(held == 1 + modifiers.bits, "a key forgets its modifiers");
        require(bytes == "\x1B[" + std::to_string(number) + ";" + std::to_string(held) + final,
                "a key sends more than one sequence");
    }
}

void checkKeys(FuzzInput& input, KeyModifiers modifiers) {
    const auto key = static_cast<TerminalKey>(input.between(0, static_cast<int>(TerminalKey::Escape)));
    const CursorKeys mode = input.next() % 2 == 0 ? CursorKeys::Normal : CursorKeys::Application;
    checkKey(encodeKey(key, modifiers, mode), modifiers);
    checkKey(encodeKeypadKey(key, modifiers, mode, Keypad::Application), modifiers);
    require(encodeKeypadKey(key, modifiers, mode, Keypad::Normal) == encodeKey(key, modifiers, mode),
            "the keypad is another one in normal mode");
    if (modifiers.any())
        require(encodeKey(key, modifiers, CursorKeys::Application) ==
                    encodeKey(key, modifiers, CursorKeys::Normal),
                "with a modifier a key depends on the mode");
    const auto control = controlCharacter(static_cast<char32_t>(input.next()));
    require(!control || isControl(*control), "Control gives something else than a control character");
}

void checkMouse(FuzzInput& input, KeyModifiers modifiers) {
    const MouseEvent event{.action = static_cast<MouseAction>(input.between(0, 2)),
                           .button = static_cast<MouseButton>(input.between(0, 7)),
                           .modifiers = modifiers,
                           .row = static_cast<int>(input.next() + input.next()),
                           .column = static_cast<int>(input.next() + input.next())};
    const std::string bytes = encodeMouse(event, MouseForm::Sgr);
    int code = 0;
    int column = 0;
    int row = 0;
    char final = 0;
    require(std::sscanf(bytes.c_str(), "\x1B[<%d;%d;%d%c", &code, &column, &row, &final) == 4,
            "the mouse sends another form");
    require(column == event.column + 1 && row == event.row + 1, "the mouse is somewhere else");
    require((final == 'm') == (event.action == MouseAction::Release), "the mouse does something else");
    require(((code & 4) != 0) == modifiers.shift() && ((code & 8) != 0) == modifiers.alt() &&
                ((code & 16) != 0) == modifiers.control() &&
                ((code & 32) != 0) == (event.action == MouseAction::Move),
            "the mouse forgets something");
    const std::string classic = encodeMouse(event, MouseForm::Classic);
    require(classic.empty() == (event.column > 222 || event.row > 222), "the classic form ends elsewhere");
    if (classic.empty()) return;
    require(classic.size() == 6 && static_cast<unsigned char>(classic[4]) == event.column + 33 &&
                static_cast<unsigned char>(classic[5]) == event.row + 33,
            "the classic form is somewhere else");
}

void checkPaste(std::string_view text) {
    require(encodePaste(text, PasteBrackets::Off) == text, "a bare paste is changed");
    const std::string paste = encodePaste(text, PasteBrackets::On);
    std::string_view inside = paste;
    require(inside.starts_with(pasteStart) && inside.ends_with(pasteEnd), "a paste has no brackets");
    inside = inside.substr(pasteStart.size(), inside.size() - pasteStart.size() - pasteEnd.size());
    for (std::size_t index = 0; index < inside.size(); ++index) {
        const char byte = inside[index];
        require(!isControl(byte) || byte == '\t' || byte == '\n' || byte == '\r', "a paste acts");
        const bool c1 = byte == '\xC2' && index + 1 < inside.size() &&
                        static_cast<unsigned char>(inside[index + 1]) - 0x80u < 0x20;
        require(!c1, "a paste acts by a control character of two bytes");
    }
    require(encodePaste(inside, PasteBrackets::On) == paste, "a clean paste is changed");
    // Nothing but what must go is gone.
    std::size_t at = 0;
    for (const char byte : inside) {
        at = text.find(byte, at);
        require(at++ != std::string_view::npos, "a paste has what was not in the text");
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    FuzzInput input(data, size);
    const KeyModifiers modifiers{static_cast<std::uint8_t>(input.next() % 8)};
    checkKeys(input, modifiers);
    checkMouse(input, modifiers);
    const std::string_view text = input.rest();
    const std::string typed = encodeText(text, modifiers);
    require(typed.ends_with(text) && typed.size() <= text.size() + 1, "typed text is changed");
    require(text.empty() ? typed.empty() : (typed.size() > text.size()) == modifiers.alt(),
            "Alt is forgotten, or made up");
    checkPaste(text);
    return 0;
}
