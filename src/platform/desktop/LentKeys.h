#pragma once

#include <QList>

#include <chrono>

#include <xcb/xcb.h>

namespace orvo {

class XConnection;

/// Lends unused keys to characters that are on no key, and takes them back at the end.
///
/// The receiver translates a key when it handles the event, not when we send it, and reads the layout anew
/// for every change. So a key that has been used may change its character only after a pause in which the
/// receiver can catch up.
class LentKeys {
public:
    LentKeys(const XConnection& connection, const QList<xcb_keycode_t>& unused, int symbolsPerKey);
    ~LentKeys();
    LentKeys(const LentKeys&) = delete;
    LentKeys& operator=(const LentKeys&) = delete;

    bool canLend() const { return !m_keys.isEmpty(); }
    /// The key that writes this character now. May wait for the receiver.
    xcb_keycode_t lend(char32_t character);

private:
    struct Key {
        xcb_keycode_t code;
        char32_t character;
        // Sent since the latest pause.
        bool used;
    };

    void assign(xcb_keycode_t code, xcb_keysym_t symbol);
    void letReceiverCatchUp();

    const XConnection& m_connection;
    const int m_symbolsPerKey;
    // Least recently used first.
    QList<Key> m_keys;
    int m_changes = 0;
};

}  // namespace orvo
