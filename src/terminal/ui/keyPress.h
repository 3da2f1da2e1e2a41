#pragma once

#include "terminal/core/KeyEncoder.h"
#include "terminal/core/TerminalModes.h"

#include <QByteArray>
#include <Qt>

class QKeyEvent;

namespace orvo {

/// What a key press means to a terminal with the focus. Control with a letter belongs to the program, so the
/// desktop's own commands move to Control+Shift, and Tab's to Control+Tab.
enum class KeyMeaning {
    Program,
    Copy,
    Paste,
    /// Control+Shift with another letter: the menu item whose key is Control with that letter.
    MenuItem,
    /// Control+Shift+F: kept from the menus, since in a terminal it means to find in the terminal.
    Find,
    NextWidget,
    PreviousWidget,
    ZoomIn,
    ZoomOut,
    ZoomReset,
    /// A page through the scrollback, for who has one: in the alternate screen the key is the program's.
    ScrollPageUp,
    ScrollPageDown,
    /// The desktop's or nobody's: modifiers alone, keys held with the Super key.
    Other,
};

KeyMeaning meaningOf(const QKeyEvent& event);

/// The bytes that a key press sends to the program; empty when it has none.
QByteArray bytesOf(const QKeyEvent& event, const TerminalModes& modes);

KeyModifiers modifiersOf(Qt::KeyboardModifiers modifiers);

/// The key of the menu item that a `MenuItem` press stands for, for example Control+N; as Qt's key
/// combination.
int menuKeyOf(const QKeyEvent& event);

}  // namespace orvo
