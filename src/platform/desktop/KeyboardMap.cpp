#include "platform/desktop/KeyboardMap.h"

#include "platform/desktop/XConnection.h"

#include <algorithm>
#include <span>

#include <xkbcommon/xkbcommon.h>

// The header has a field that is named by a word of C++.
// NOLINTNEXTLINE(clang-diagnostic-keyword-macro)
#define explicit explicit_
#include <xcb/xkb.h>
#undef explicit

namespace orvo {
namespace {

struct KeyboardState {
    int layout = 0;
    bool capsLock = false;
};

KeyboardState stateOf(const XConnection& connection) {
    xcb_connection_t* const x = connection.get();
    const XReply<xcb_xkb_use_extension_reply_t> used(
        xcb_xkb_use_extension_reply(x, xcb_xkb_use_extension(x, 1, 0), nullptr));
    if (!used || !used->supported) return {};
    const XReply<xcb_xkb_get_state_reply_t> state(
        xcb_xkb_get_state_reply(x, xcb_xkb_get_state(x, XCB_XKB_ID_USE_CORE_KBD), nullptr));
    if (!state) return {};
    return {state->group, (state->mods & XCB_MOD_MASK_LOCK) != 0};
}

// The number pad writes different things with and without Num Lock.
bool isOnNumberPad(xcb_keysym_t symbol) {
    return symbol >= XKB_KEY_KP_Space && symbol <= XKB_KEY_KP_Equal;
}

}  // namespace

std::optional<KeyboardMap> KeyboardMap::read(const XConnection& connection) {
    xcb_connection_t* const x = connection.get();
    const xcb_setup_t* const setup = xcb_get_setup(x);
    const auto count = static_cast<uint8_t>(setup->max_keycode - setup->min_keycode + 1);
    const XReply<xcb_get_keyboard_mapping_reply_t> reply(
        xcb_get_keyboard_mapping_reply(x, xcb_get_keyboard_mapping(x, setup->min_keycode, count), nullptr));
    if (!reply || reply->keysyms_per_keycode < 2) return std::nullopt;

    const KeyboardState state = stateOf(connection);
    KeyboardMap map;
    map.m_symbolsPerKey = reply->keysyms_per_keycode;
    const std::span<const xcb_keysym_t> symbols(
        xcb_get_keyboard_mapping_keysyms(reply.get()),
        static_cast<std::size_t>(xcb_get_keyboard_mapping_keysyms_length(reply.get())));
    const auto perKey = static_cast<std::size_t>(map.m_symbolsPerKey);
    for (std::size_t index = 0; index < count; ++index) {
        const auto code = static_cast<xcb_keycode_t>(setup->min_keycode + index);
        const auto key = symbols.subspan(index * perKey, perKey);
        if (std::ranges::all_of(key, [](xcb_keysym_t symbol) { return symbol == XKB_KEY_NoSymbol; })) {
            map.m_unused.append(code);
            continue;
        }
        for (const xcb_keysym_t symbol : key)
            map.m_symbols.try_emplace(symbol, code);
        // The first two layouts stand in columns of two each. A key with one layout has it in every layout;
        // for a third one nothing is known here, and all its characters are lent keys.
        const bool hasSecond = perKey >= 4 && (key[2] != XKB_KEY_NoSymbol || key[3] != XKB_KEY_NoSymbol);
        if (state.layout > 1 && hasSecond) continue;
        const std::size_t first = state.layout == 1 && hasSecond ? 2 : 0;
        // With Caps Lock on, Shift does the opposite on keys that have a letter in both cases.
        const bool isLetter =
            xkb_keysym_to_lower(key[first + 1]) == key[first] && key[first] != key[first + 1];
        const bool swapped = state.capsLock && isLetter;
        map.addLevel(code, key[first], swapped);
        map.addLevel(code, key[first + 1], !swapped);
    }
    return map;
}

void KeyboardMap::addLevel(xcb_keycode_t code, xcb_keysym_t symbol, bool shift) {
    const char32_t character = xkb_keysym_to_utf32(symbol);
    if (character < U' ' || character == 0x7f || isOnNumberPad(symbol)) return;
    m_characters.try_emplace(character, Key{code, shift});
}

std::optional<KeyboardMap::Key> KeyboardMap::key(char32_t character) const {
    const auto found = m_characters.find(character);
    if (found == m_characters.end()) return std::nullopt;
    return found->second;
}

std::optional<xcb_keycode_t> KeyboardMap::keyOf(xcb_keysym_t symbol) const {
    const auto found = m_symbols.find(symbol);
    if (found == m_symbols.end()) return std::nullopt;
    return found->second;
}

}  // namespace orvo
