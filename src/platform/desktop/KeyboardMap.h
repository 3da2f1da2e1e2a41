#pragma once

#include <QList>

#include <cstdint>
#include <optional>
#include <unordered_map>

#include <xcb/xcb.h>

namespace orvo {

class XConnection;

/// Where the characters lie on the keyboard as it is laid out now: in the active layout, without and with
/// Shift. A value, as of its making.
class KeyboardMap {
public:
    struct Key {
        xcb_keycode_t code = 0;
        bool shift = false;
    };

    /// Nothing when the server does not tell.
    static std::optional<KeyboardMap> read(const XConnection& connection);

    std::optional<Key> key(char32_t character) const;
    /// By its symbol; for keys that write nothing.
    std::optional<xcb_keycode_t> keyOf(xcb_keysym_t symbol) const;
    /// Keys that have no symbol at all and may be lent to characters that are on no key.
    const QList<xcb_keycode_t>& unused() const { return m_unused; }
    int symbolsPerKey() const { return m_symbolsPerKey; }

private:
    void addLevel(xcb_keycode_t code, xcb_keysym_t symbol, bool shift);

    std::unordered_map<char32_t, Key> m_characters;
    std::unordered_map<xcb_keysym_t, xcb_keycode_t> m_symbols;
    QList<xcb_keycode_t> m_unused;
    int m_symbolsPerKey = 0;
};

}  // namespace orvo
