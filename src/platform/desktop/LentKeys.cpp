#include "platform/desktop/LentKeys.h"

#include "platform/desktop/XConnection.h"

#include <algorithm>
#include <thread>
#include <vector>

#include <xkbcommon/xkbcommon.h>

namespace orvo {
namespace {

// Found by trial with hard lines: toolkits were exact from 40 ms a change, a plain X terminal from 300 ms a
// pause; at half of that both lost characters.
constexpr std::chrono::milliseconds perChange(40);
constexpr std::chrono::milliseconds shortestPause(300);

// How the X protocol writes a Unicode character as a key symbol, outside Latin-1.
constexpr xcb_keysym_t unicodeSymbols = 0x01000000;

xcb_keysym_t symbolOf(char32_t character) {
    return character < 0x100 ? static_cast<xcb_keysym_t>(character) : unicodeSymbols | character;
}

}  // namespace

LentKeys::LentKeys(const XConnection& connection, const QList<xcb_keycode_t>& unused, int symbolsPerKey)
    : m_connection(connection), m_symbolsPerKey(symbolsPerKey) {
    for (const xcb_keycode_t code : unused)
        m_keys.append({code, 0, false});
}

LentKeys::~LentKeys() {
    if (m_changes > 0) letReceiverCatchUp();
    for (const Key& key : m_keys) {
        if (key.character != 0) assign(key.code, XKB_KEY_NoSymbol);
    }
    m_connection.synchronise();
}

xcb_keycode_t LentKeys::lend(char32_t character) {
    auto key = std::ranges::find(m_keys, character, &Key::character);
    if (key == m_keys.end()) {
        key = m_keys.begin();
        if (key->used) letReceiverCatchUp();
        key->character = character;
        assign(key->code, symbolOf(character));
        ++m_changes;
    }
    key->used = true;
    const xcb_keycode_t code = key->code;
    std::rotate(key, key + 1, m_keys.end());
    return code;
}

// Twice the same symbol, or the server would take a letter for the lower case of a pair.
void LentKeys::assign(xcb_keycode_t code, xcb_keysym_t symbol) {
    std::vector<xcb_keysym_t> symbols(static_cast<std::size_t>(m_symbolsPerKey), XKB_KEY_NoSymbol);
    symbols[0] = symbols[1] = symbol;
    xcb_change_keyboard_mapping(m_connection.get(), 1, code, static_cast<uint8_t>(m_symbolsPerKey),
                                symbols.data());
    m_connection.synchronise();
}

void LentKeys::letReceiverCatchUp() {
    m_connection.synchronise();
    std::this_thread::sleep_for(std::max(shortestPause, m_changes * perChange));
    m_changes = 0;
    for (Key& key : m_keys)
        key.used = false;
}

}  // namespace orvo
