// Walks the capabilities of the terminal type that programs are told, as the installed database has it.
#include "terminal/core/KeyEncoder.h"
#include "terminal/core/ScreenText.h"
#include "terminal/core/TerminalScreen.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <map>
#include <memory>
#include <set>
#include <string>

namespace orvo::test {
namespace {

/// What `infocmp` says: the text behind "=" or "#", or nothing for a flag, by the long name.
std::map<std::string, std::string, std::less<>> installedCapabilities() {
    std::map<std::string, std::string, std::less<>> capabilities;
    const std::unique_ptr<FILE, int (*)(FILE*)> output(popen("infocmp -1 -L xterm-256color", "r"), pclose);
    std::array<char, 1024> line;
    while (output && std::fgets(line.data(), line.size(), output.get()) != nullptr) {
        std::string text = line.data();
        if (!text.starts_with('\t')) continue;
        text = text.substr(1, text.rfind(',') - 1);
        const std::size_t value = text.find_first_of("=#");
        capabilities[text.substr(0, value)] = value == std::string::npos ? "" : text.substr(value + 1);
    }
    return capabilities;
}

/// The bytes of a definition without parameters and without padding.
std::string bytesOf(std::string_view definition) {
    std::string bytes;
    for (std::size_t at = 0; at < definition.size(); ++at) {
        const char byte = definition[at];
        if (byte == '\\' && definition[at + 1] == 'E') {
            bytes += '\x1B';
            ++at;
        } else if (byte == '\\' && definition[at + 1] >= '0' && definition[at + 1] <= '7') {
            bytes += static_cast<char>(std::stoi(std::string(definition.substr(at + 1, 3)), nullptr, 8));
            at += 3;
        } else if (byte == '\\') {
            const char escaped = definition[++at];
            bytes += escaped == 'r' ? '\r' : escaped == 'n' ? '\n' : escaped;
        } else if (byte == '^') {
            bytes += static_cast<char>(definition[++at] & 0x1F);
        } else if (byte == '$' && at + 1 < definition.size() && definition[at + 1] == '<') {
            at = definition.find('>', at);
        } else {
            bytes += byte;
        }
    }
    return bytes;
}

struct OutputCase {
    const char* name;
    const char* definition;
    /// What the definition makes of its parameters; null when it has none.
    const char* bytes;
    /// Sent before, from the second line's third column of "abcde", "fghij" and "klmno".
    const char* before;
    /// Sent behind.
    const char* after;
    const char* drawing;
    const char* cursor;
};

constexpr const char* letters = "abcde\nfghij\nklmno";

const OutputCase outputCases[] = {
    {"back_tab", R"(\E[Z)", nullptr, "\x1B[2;12H", "", letters, "1,8"},
    {"bell", "^G", nullptr, "", "", letters, "1,2"},
    {"carriage_return", R"(\r)", nullptr, "", "", letters, "1,0"},
    {"change_scroll_region", R"(\E[%i%p1%d;%p2%dr)", "\x1B[2;3r", "", "\x1B[3;1H\nX", "abcde\nklmno\nX",
     "2,1"},
    {"clear_all_tabs", R"(\E[3g)", nullptr, "", "\tX", "abcde\nfghij              X\nklmno", "1,19+"},
    {"clear_screen", R"(\E[H\E[2J)", nullptr, "", "", "", "0,0"},
    {"clr_bol", R"(\E[1K)", nullptr, "", "", "abcde\n   ij\nklmno", "1,2"},
    {"clr_eol", R"(\E[K)", nullptr, "", "", "abcde\nfg\nklmno", "1,2"},
    {"clr_eos", R"(\E[J)", nullptr, "", "", "abcde\nfg", "1,2"},
    {"column_address", R"(\E[%i%p1%dG)", "\x1B[5G", "", "", letters, "1,4"},
    {"cursor_address", R"(\E[%i%p1%d;%p2%dH)", "\x1B[4;6H", "", "", letters, "3,5"},
    {"cursor_down", R"(\n)", nullptr, "", "", letters, "2,2"},
    {"cursor_home", R"(\E[H)", nullptr, "", "", letters, "0,0"},
    {"cursor_left", "^H", nullptr, "", "", letters, "1,1"},
    {"cursor_right", R"(\E[C)", nullptr, "", "", letters, "1,3"},
    {"cursor_up", R"(\E[A)", nullptr, "", "", letters, "0,2"},
    {"delete_character", R"(\E[P)", nullptr, "", "", "abcde\nfgij\nklmno", "1,2"},
    {"delete_line", R"(\E[M)", nullptr, "", "", "abcde\nklmno", "1,2"},
    {"enter_alt_charset_mode", R"(\E(0)", nullptr, "", "q", "abcde\nfg─ij\nklmno", "1,3"},
    {"enter_am_mode", R"(\E[?7h)", nullptr, "\x1B[?7l\x1B[2;20H", "XY", "abcde\nfghij              X\nYlmno",
     "2,1"},
    {"enter_ca_mode", R"(\E[?1049h\E[22;0;0t)", nullptr, "", "", "", "0,0"},
    {"enter_insert_mode", R"(\E[4h)", nullptr, "", "X", "abcde\nfgXhij\nklmno", "1,3"},
    {"erase_chars", R"(\E[%p1%dX)", "\x1B[2X", "", "", "abcde\nfg  j\nklmno", "1,2"},
    {"exit_alt_charset_mode", R"(\E(B)", nullptr, "\x1B(0", "q", "abcde\nfgqij\nklmno", "1,3"},
    {"exit_am_mode", R"(\E[?7l)", nullptr, "\x1B[2;20H", "XY", "abcde\nfghij              Y\nklmno", "1,19+"},
    {"exit_ca_mode", R"(\E[?1049l\E[23;0;0t)", nullptr, "\x1B[?1049hother", "", letters, "1,2"},
    {"exit_insert_mode", R"(\E[4l)", nullptr, "\x1B[4h", "X", "abcde\nfgXij\nklmno", "1,3"},
    {"init_2string", R"(\E[\041p\E[?3;4l\E[4l\E>)", nullptr, "\x1B[4h\x1B[?6h\x1B[2;3H", "X",
     "abcde\nfgXij\nklmno", "1,3"},
    {"insert_line", R"(\E[L)", nullptr, "", "", "abcde\n\nfghij\nklmno", "1,2"},
    {"newline", R"(\EE)", nullptr, "", "", letters, "2,0"},
    {"parm_dch", R"(\E[%p1%dP)", "\x1B[2P", "", "", "abcde\nfgj\nklmno", "1,2"},
    {"parm_delete_line", R"(\E[%p1%dM)", "\x1B[2M", "", "", "abcde", "1,2"},
    {"parm_down_cursor", R"(\E[%p1%dB)", "\x1B[2B", "", "", letters, "3,2"},
    {"parm_ich", R"(\E[%p1%d@)", "\x1B[2@", "", "", "abcde\nfg  hij\nklmno", "1,2"},
    {"parm_index", R"(\E[%p1%dS)", "\x1B[2S", "", "", "klmno", "1,2"},
    {"parm_insert_line", R"(\E[%p1%dL)", "\x1B[2L", "", "", "abcde\n\n\nfghij", "1,2"},
    {"parm_left_cursor", R"(\E[%p1%dD)", "\x1B[2D", "", "", letters, "1,0"},
    {"parm_right_cursor", R"(\E[%p1%dC)", "\x1B[2C", "", "", letters, "1,4"},
    {"parm_rindex", R"(\E[%p1%dT)", "\x1B[2T", "", "", "\n\nabcde\nfghij", "1,2"},
    {"parm_up_cursor", R"(\E[%p1%dA)", "\x1B[1A", "", "", letters, "0,2"},
    {"repeat_char", R"(%p1%c\E[%p2%{1}%-%db)", "X\x1B[2b", "", "", "abcde\nfgXXX\nklmno", "1,5"},
    {"reset_1string", R"(\Ec\E]104^G)", nullptr, "", "X", "X", "0,1"},
    {"reset_2string", R"(\E[\041p\E[?3;4l\E[4l\E>)", nullptr, "", "", letters, "1,2"},
    {"restore_cursor", R"(\E8)", nullptr, "\x1B\x37\x1B[H", "", letters, "1,2"},
    {"row_address", R"(\E[%i%p1%dd)", "\x1B[4d", "", "", letters, "3,2"},
    {"save_cursor", R"(\E7)", nullptr, "", "\x1B[H\x1B\x38", letters, "1,2"},
    {"scroll_forward", R"(\n)", nullptr, "\x1B[4H", "", "fghij\nklmno", "3,0"},
    {"scroll_reverse", R"(\EM)", nullptr, "\x1B[H", "", "\nabcde\nfghij\nklmno", "0,0"},
    {"set_tab", R"(\EH)", nullptr, "", "\r\t", letters, "1,2"},
    {"tab", "^I", nullptr, "", "", letters, "1,8"},
};

TEST(Terminfo, OutputCapabilitiesDoWhatTheySay) {
    const auto installed = installedCapabilities();
    ASSERT_GT(installed.size(), 150u) << "infocmp is missing?";
    for (const OutputCase& example : outputCases) {
        SCOPED_TRACE(example.name);
        const auto definition = installed.find(example.name);
        ASSERT_NE(definition, installed.end());
        ASSERT_EQ(definition->second, example.definition);
        TerminalScreen screen(4, 20);
        screen.setBackgroundColorErase(true);
        screen.feed("abcde\r\nfghij\r\nklmno\x1B[2;3H");
        screen.feed(example.before);
        screen.feed(example.bytes != nullptr ? example.bytes : bytesOf(example.definition));
        screen.feed(example.after);
        EXPECT_EQ(drawnRows(screen), example.drawing);
        EXPECT_EQ(cursorOf(screen), example.cursor);
    }
}

struct LookCase {
    const char* name;
    const char* definition;
    const char* bytes;
    const char* before;
    /// What a "q" that follows shows, and how.
    const char* look;
};

const LookCase lookCases[] = {
    {"enter_bold_mode", R"(\E[1m)", nullptr, "", "q - - bold"},
    {"enter_dim_mode", R"(\E[2m)", nullptr, "", "q - - dim"},
    {"enter_italics_mode", R"(\E[3m)", nullptr, "", "q - - italic"},
    {"enter_reverse_mode", R"(\E[7m)", nullptr, "", "q - - inverse"},
    {"enter_secure_mode", R"(\E[8m)", nullptr, "", "q - - conceal"},
    {"enter_standout_mode", R"(\E[7m)", nullptr, "", "q - - inverse"},
    {"enter_underline_mode", R"(\E[4m)", nullptr, "", "q - - underline1"},
    {"exit_attribute_mode", R"(\E(B\E[m)", nullptr, "\x1B(0\x1B[1;3;4;7;31;42m", "q - -"},
    {"exit_italics_mode", R"(\E[23m)", nullptr, "\x1B[1;3m", "q - - bold"},
    {"exit_standout_mode", R"(\E[27m)", nullptr, "\x1B[1;7m", "q - - bold"},
    {"exit_underline_mode", R"(\E[24m)", nullptr, "\x1B[1;4m", "q - - bold"},
    {"orig_pair", R"(\E[39;49m)", nullptr, "\x1B[31;42m", "q - -"},
    {"set_a_background", R"(\E[%?%p1%{8}%<%t4%p1%d%e%p1%{16}%<%t10%p1%{8}%-%d%e48;5;%p1%d%;m)",
     "\x1B[48;5;196m", "", "q - FF0000"},
    {"set_a_foreground", R"(\E[%?%p1%{8}%<%t3%p1%d%e%p1%{16}%<%t9%p1%{8}%-%d%e38;5;%p1%d%;m)", "\x1B[97m", "",
     "q FFFFFF -"},
    // All nine at once.
    {"set_attributes",
     R"(%?%p9%t\E(0%e\E(B%;\E[0%?%p6%t;1%;%?%p5%t;2%;%?%p2%t;4%;%?%p1%p3%|%t;7%;%?%p4%t;5%;%?%p7%t;8%;m)",
     "\x1B(0\x1B[0;1;2;4;7;5;8m", "\x1B[3m", "─ - - bold inverse dim underline1 conceal"},
};

TEST(Terminfo, AttributesLookAsTheySay) {
    const auto installed = installedCapabilities();
    for (const LookCase& example : lookCases) {
        SCOPED_TRACE(example.name);
        ASSERT_EQ(installed.at(example.name), example.definition);
        TerminalScreen screen(3, 10);
        screen.feed(example.before);
        screen.feed(example.bytes != nullptr ? example.bytes : bytesOf(example.definition));
        screen.feed("q");
        EXPECT_EQ(screen.line(0).text(0) + " " + describe(screen.line(0).cells()[0]), example.look);
    }
}

TEST(Terminfo, TheCursorIsHiddenAndShown) {
    const auto installed = installedCapabilities();
    TerminalScreen screen(3, 10);
    screen.feed(bytesOf(installed.at("cursor_invisible")));
    EXPECT_FALSE(screen.cursorVisible());
    screen.feed(bytesOf(installed.at("cursor_normal")));
    EXPECT_TRUE(screen.cursorVisible());
    screen.feed("\x1B[?25l" + bytesOf(installed.at("cursor_visible")));
    EXPECT_TRUE(screen.cursorVisible());
    screen.feed(bytesOf(installed.at("keypad_xmit")));
    EXPECT_TRUE(screen.modes().applicationCursor && screen.modes().applicationKeypad);
    screen.feed(bytesOf(installed.at("keypad_local")));
    EXPECT_FALSE(screen.modes().applicationCursor || screen.modes().applicationKeypad);
}

TEST(Terminfo, TheQuestionsAreAnswered) {
    const auto installed = installedCapabilities();
    TerminalScreen screen(3, 10);
    std::string replies;
    screen.onResponse = [&replies](std::string_view reply) {
        replies += reply;
    };
    screen.feed("\x1B[2;4H" + bytesOf(installed.at("user7")) + bytesOf(installed.at("user9")));
    EXPECT_EQ(installed.at("user6"), R"(\E[%i%d;%dR)");
    EXPECT_EQ(installed.at("user8"), R"(\E[?%[;0123456789]c)");
    EXPECT_EQ(replies, "\x1B[2;4R\x1B[?1;2c");
}

struct KeyCase {
    const char* name;
    TerminalKey key;
    std::uint8_t modifiers = KeyModifiers::None;
    Keypad keypad = Keypad::Normal;
};

const KeyCase keyCases[] = {
    {"key_up", TerminalKey::Up},
    {"key_down", TerminalKey::Down},
    {"key_left", TerminalKey::Left},
    {"key_right", TerminalKey::Right},
    {"key_beg", TerminalKey::Begin},
    {"key_ic", TerminalKey::Insert},
    {"key_dc", TerminalKey::Delete},
    {"key_npage", TerminalKey::PageDown},
    {"key_ppage", TerminalKey::PageUp},
    {"key_backspace", TerminalKey::Backspace},
    {"key_btab", TerminalKey::Tab, KeyModifiers::Shift},
    {"key_sdc", TerminalKey::Delete, KeyModifiers::Shift},
    {"key_send", TerminalKey::End, KeyModifiers::Shift},
    {"key_sf", TerminalKey::Down, KeyModifiers::Shift},
    {"key_shome", TerminalKey::Home, KeyModifiers::Shift},
    {"key_sic", TerminalKey::Insert, KeyModifiers::Shift},
    {"key_sleft", TerminalKey::Left, KeyModifiers::Shift},
    {"key_snext", TerminalKey::PageDown, KeyModifiers::Shift},
    {"key_sprevious", TerminalKey::PageUp, KeyModifiers::Shift},
    {"key_sr", TerminalKey::Up, KeyModifiers::Shift},
    {"key_sright", TerminalKey::Right, KeyModifiers::Shift},
    {"key_a1", TerminalKey::Home, KeyModifiers::None, Keypad::Application},
    {"key_a3", TerminalKey::PageUp, KeyModifiers::None, Keypad::Application},
    {"key_b2", TerminalKey::Begin, KeyModifiers::None, Keypad::Application},
    {"key_c1", TerminalKey::End, KeyModifiers::None, Keypad::Application},
    {"key_c3", TerminalKey::PageDown, KeyModifiers::None, Keypad::Application},
    {"key_enter", TerminalKey::Return, KeyModifiers::None, Keypad::Application},
};

TEST(Terminfo, KeysSendWhatTheySay) {
    const auto installed = installedCapabilities();
    for (const KeyCase& example : keyCases) {
        EXPECT_EQ(encodeKeypadKey(example.key, {example.modifiers}, CursorKeys::Application, example.keypad),
                  bytesOf(installed.at(example.name)))
            << example.name;
    }
    // The twelve function keys plain, then with Shift, Control, Control and Shift, Alt, Alt and Shift.
    constexpr std::array<std::uint8_t, 6> modifiers = {
        KeyModifiers::None,    KeyModifiers::Shift,
        KeyModifiers::Control, KeyModifiers::Control | KeyModifiers::Shift,
        KeyModifiers::Alt,     KeyModifiers::Alt | KeyModifiers::Shift,
    };
    for (int number = 1; number <= 63; ++number) {
        const auto key = static_cast<TerminalKey>(static_cast<int>(TerminalKey::F1) + (number - 1) % 12);
        const std::string name = "key_f" + std::to_string(number);
        EXPECT_EQ(
            encodeKey(key, {modifiers[static_cast<std::size_t>((number - 1) / 12)]}, CursorKeys::Normal),
            bytesOf(installed.at(name)))
            << name;
    }
}

/// Capabilities that hold by other tests, or that are taken without effect, and why.
const std::set<std::string, std::less<>> explained = {
    // Of the grid: it wraps behind the last column, waits there, erases with the background, moves and writes
    // in insert mode and with attributes, keeps a backspace in the line, needs no padding.
    "auto_right_margin", "eat_newline_glitch", "back_color_erase", "move_insert_mode", "move_standout_mode",
    "backspaces_with_bs", "no_pad_char", "columns", "lines", "init_tabs", "max_colors", "max_pairs",
    "acs_chars",
    // The mouse's own tests show it.
    "key_mouse",
    // Home and End have one form in both modes of the cursor keys, which programs know as well.
    "key_home", "key_end",
    // Setting colours, blinking, flashing, the eighth bit of keys, locked memory, printing.
    "can_change", "initialize_color", "orig_colors", "enter_blink_mode", "flash_screen", "has_meta_key",
    "meta_off", "meta_on", "memory_lock", "memory_unlock", "print_screen", "prtr_off", "prtr_on",
    "prtr_silent",
    // Left and right margins: the mode report says that there are none.
    "clear_margins", "set_left_margin_parm", "set_lr_margin", "set_right_margin_parm",
    // Of tests above.
    "cursor_invisible", "cursor_normal", "cursor_visible", "keypad_xmit", "keypad_local", "user6", "user7",
    "user8", "user9"};

TEST(Terminfo, NoCapabilityIsForgotten) {
    std::set<std::string, std::less<>> known = explained;
    for (const OutputCase& example : outputCases)
        known.insert(example.name);
    for (const LookCase& example : lookCases)
        known.insert(example.name);
    for (const KeyCase& example : keyCases)
        known.insert(example.name);
    for (int number = 1; number <= 63; ++number)
        known.insert("key_f" + std::to_string(number));
    for (const auto& [name, definition] : installedCapabilities())
        EXPECT_TRUE(known.contains(name)) << name << "=" << definition;
}

TEST(Terminfo, WhatHasNoEffectIsTakenWhole) {
    const auto installed = installedCapabilities();
    for (const char* name :
         {"orig_colors", "enter_blink_mode", "flash_screen", "meta_off", "meta_on", "memory_lock",
          "memory_unlock", "print_screen", "prtr_off", "prtr_on", "clear_margins"}) {
        TerminalScreen screen(3, 10);
        screen.feed("ab");
        screen.feed(bytesOf(installed.at(name)));
        screen.feed("c");
        EXPECT_EQ(drawnRows(screen), "abc") << name;
        EXPECT_EQ(screen.line(0).cells()[2].attributes, 0) << name;
    }
}

}  // namespace
}  // namespace orvo::test
