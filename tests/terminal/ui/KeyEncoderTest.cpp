#include "terminal/core/KeyEncoder.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace orvo {
namespace {

using namespace std::string_literals;

constexpr KeyModifiers plain{};
constexpr KeyModifiers shift{KeyModifiers::Shift};
constexpr KeyModifiers alt{KeyModifiers::Alt};
constexpr KeyModifiers control{KeyModifiers::Control};
constexpr KeyModifiers controlShift{KeyModifiers::Control | KeyModifiers::Shift};
constexpr KeyModifiers all{KeyModifiers::Control | KeyModifiers::Shift | KeyModifiers::Alt};

struct KeyCase {
    TerminalKey key;
    KeyModifiers modifiers;
    std::string normal;
    std::string application;
};

TEST(KeyEncoder, KeysSendTheFormOfTheirTerminfoEntry) {
    const std::vector<KeyCase> cases = {
        {TerminalKey::Up, plain, "\x1b[A", "\x1bOA"},
        {TerminalKey::Down, plain, "\x1b[B", "\x1bOB"},
        {TerminalKey::Right, plain, "\x1b[C", "\x1bOC"},
        {TerminalKey::Left, plain, "\x1b[D", "\x1bOD"},
        {TerminalKey::Begin, plain, "\x1b[E", "\x1bOE"},
        {TerminalKey::Home, plain, "\x1b[H", "\x1b[H"},
        {TerminalKey::End, plain, "\x1b[F", "\x1b[F"},
        {TerminalKey::F1, plain, "\x1bOP", "\x1bOP"},
        {TerminalKey::F5, plain, "\x1b[15~", "\x1b[15~"},
        {TerminalKey::Backspace, plain, "\x7f", "\x7f"},
        {TerminalKey::Return, plain, "\r", "\r"},
        {TerminalKey::Tab, plain, "\t", "\t"},
        {TerminalKey::Escape, plain, "\x1b", "\x1b"},
        // A modifier brings the bracket form back, whatever the mode.
        {TerminalKey::Up, shift, "\x1b[1;2A", "\x1b[1;2A"},
        {TerminalKey::Right, control, "\x1b[1;5C", "\x1b[1;5C"},
        {TerminalKey::Left, alt, "\x1b[1;3D", "\x1b[1;3D"},
        {TerminalKey::Home, controlShift, "\x1b[1;6H", "\x1b[1;6H"},
        {TerminalKey::End, all, "\x1b[1;8F", "\x1b[1;8F"},
        {TerminalKey::Delete, shift, "\x1b[3;2~", "\x1b[3;2~"},
        {TerminalKey::PageUp, control, "\x1b[5;5~", "\x1b[5;5~"},
        {TerminalKey::F1, shift, "\x1b[1;2P", "\x1b[1;2P"},
        {TerminalKey::F12, control, "\x1b[24;5~", "\x1b[24;5~"},
        {TerminalKey::Tab, shift, "\x1b[Z", "\x1b[Z"},
        {TerminalKey::Return, shift, "\x1b\r", "\x1b\r"},
        {TerminalKey::Return, alt, "\x1b\r", "\x1b\r"},
        {TerminalKey::Backspace, alt, "\x1b\x7f", "\x1b\x7f"},
        {TerminalKey::Backspace, control, "\b", "\b"},
        {TerminalKey::Escape, alt, "\x1b\x1b", "\x1b\x1b"},
    };
    for (const KeyCase& key : cases) {
        SCOPED_TRACE(testing::Message()
                     << "key " << int(key.key) << " modifiers " << int(key.modifiers.bits));
        EXPECT_EQ(encodeKey(key.key, key.modifiers, CursorKeys::Normal), key.normal);
        EXPECT_EQ(encodeKey(key.key, key.modifiers, CursorKeys::Application), key.application);
    }
}

TEST(KeyEncoder, TheKeypadHasSequencesOfItsOwnInApplicationMode) {
    const auto sent = [](TerminalKey key, KeyModifiers modifiers, Keypad keypad) {
        return encodeKeypadKey(key, modifiers, CursorKeys::Normal, keypad);
    };
    EXPECT_EQ(sent(TerminalKey::Home, plain, Keypad::Application), "\x1bOw");
    EXPECT_EQ(sent(TerminalKey::Up, plain, Keypad::Application), "\x1b[A");
    EXPECT_EQ(sent(TerminalKey::Home, control, Keypad::Application), "\x1b[1;5H");
    EXPECT_EQ(sent(TerminalKey::Home, plain, Keypad::Normal), "\x1b[H");
    EXPECT_EQ(sent(TerminalKey::Return, plain, Keypad::Normal), "\r");
}

TEST(KeyEncoder, AltPutsEscapeInFrontOfText) {
    EXPECT_EQ(encodeText("b", alt),
              "\x1b"
              "b");
    EXPECT_EQ(encodeText("é", plain), "é");
    EXPECT_EQ(encodeText("", alt), "");
}

TEST(KeyEncoder, ControlReachesAllThirtyThreeControlCharacters) {
    EXPECT_EQ(controlCharacter(U'c'), '\x03');
    EXPECT_EQ(controlCharacter(U'C'), '\x03');
    EXPECT_EQ(controlCharacter(U' '), '\0');
    EXPECT_EQ(controlCharacter(U'['), '\x1b');
    EXPECT_EQ(controlCharacter(U'/'), '\x1f');
    EXPECT_EQ(controlCharacter(U'?'), '\x7f');
    EXPECT_EQ(controlCharacter(U','), std::nullopt);
    EXPECT_EQ(controlCharacter(U'1'), std::nullopt);
}

TEST(KeyEncoder, NothingPastedCanEndTheBracket) {
    const auto bracketed = [](const std::string& text) {
        return "\x1b[200~" + text + "\x1b[201~";
    };
    EXPECT_EQ(encodePaste("ls", PasteBrackets::On), bracketed("ls"));
    EXPECT_EQ(encodePaste("a\tb\r\nc\n", PasteBrackets::On), bracketed("a\tb\r\nc\n"));
    EXPECT_EQ(encodePaste("x\x1b[201~; rm -r\x03\x7f\0y"s, PasteBrackets::On), bracketed("x[201~; rm -ry"));
    EXPECT_EQ(encodePaste("\u009b201~ü\u00a0世", PasteBrackets::On), bracketed("201~ü\u00a0世"));
    // Halves that come together when what parted them is gone.
    EXPECT_EQ(encodePaste("a\xC2\x1b\x9b"
                          "b",
                          PasteBrackets::On),
              bracketed("ab"));
    EXPECT_EQ(encodePaste("x\x1b[201~\x03\n", PasteBrackets::Off), "x\x1b[201~\x03\n");
}

}  // namespace
}  // namespace orvo
