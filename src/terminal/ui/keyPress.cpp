#include "terminal/ui/keyPress.h"

#include <QKeyEvent>

#include <optional>

namespace orvo {
namespace {

std::optional<TerminalKey> terminalKeyOf(int key) {
    if (key >= Qt::Key_F1 && key <= Qt::Key_F12) {
        return static_cast<TerminalKey>(static_cast<int>(TerminalKey::F1) + key - Qt::Key_F1);
    }
    switch (key) {
        case Qt::Key_Up:
            return TerminalKey::Up;
        case Qt::Key_Down:
            return TerminalKey::Down;
        case Qt::Key_Right:
            return TerminalKey::Right;
        case Qt::Key_Left:
            return TerminalKey::Left;
        // Qt's name for the middle key of a keypad whose digits are off.
        case Qt::Key_Clear:
            return TerminalKey::Begin;
        case Qt::Key_Home:
            return TerminalKey::Home;
        case Qt::Key_End:
            return TerminalKey::End;
        case Qt::Key_Insert:
            return TerminalKey::Insert;
        case Qt::Key_Delete:
            return TerminalKey::Delete;
        case Qt::Key_PageUp:
            return TerminalKey::PageUp;
        case Qt::Key_PageDown:
            return TerminalKey::PageDown;
        case Qt::Key_Backspace:
            return TerminalKey::Backspace;
        case Qt::Key_Return:
        case Qt::Key_Enter:
            return TerminalKey::Return;
        case Qt::Key_Tab:
        case Qt::Key_Backtab:
            return TerminalKey::Tab;
        case Qt::Key_Escape:
            return TerminalKey::Escape;
        default:
            return std::nullopt;
    }
}

bool isLetter(int key) {
    return key >= Qt::Key_A && key <= Qt::Key_Z;
}

/// The character that Control makes of this press. Some systems deliver it as the text, some the plain
/// character.
std::optional<char> controlCharacterOf(const QKeyEvent& event) {
    const QString text = event.text();
    if (text.size() == 1 && (text[0] < QChar(0x20) || text[0] == QChar(0x7F))) {
        return static_cast<char>(text[0].unicode());
    }
    const int key = event.key();
    if (key < 0x20 || key > 0x7E) return std::nullopt;
    return controlCharacter(static_cast<char32_t>(key));
}

}  // namespace

KeyModifiers modifiersOf(Qt::KeyboardModifiers modifiers) {
    int bits = KeyModifiers::None;
    if (modifiers.testFlag(Qt::ShiftModifier)) bits |= KeyModifiers::Shift;
    if (modifiers.testFlag(Qt::AltModifier)) bits |= KeyModifiers::Alt;
    if (modifiers.testFlag(Qt::ControlModifier)) bits |= KeyModifiers::Control;
    return {static_cast<std::uint8_t>(bits)};
}

KeyMeaning meaningOf(const QKeyEvent& event) {
    const Qt::KeyboardModifiers modifiers =
        event.modifiers() & ~(Qt::KeypadModifier | Qt::GroupSwitchModifier);
    const int key = event.key();
    if (modifiers.testFlag(Qt::MetaModifier)) return KeyMeaning::Other;
    if (modifiers.testFlag(Qt::ControlModifier) && (key == Qt::Key_Tab || key == Qt::Key_Backtab)) {
        const bool back = key == Qt::Key_Backtab || modifiers.testFlag(Qt::ShiftModifier);
        return back ? KeyMeaning::PreviousWidget : KeyMeaning::NextWidget;
    }
    // Control makes no control character of these, so no program misses them.
    if (modifiers == Qt::ControlModifier) {
        if (key == Qt::Key_Plus || key == Qt::Key_Equal) return KeyMeaning::ZoomIn;
        if (key == Qt::Key_Minus) return KeyMeaning::ZoomOut;
        if (key == Qt::Key_0) return KeyMeaning::ZoomReset;
    }
    if (modifiers == (Qt::ControlModifier | Qt::ShiftModifier) && key == Qt::Key_Plus)
        return KeyMeaning::ZoomIn;
    if (modifiers == Qt::ShiftModifier) {
        if (key == Qt::Key_PageUp) return KeyMeaning::ScrollPageUp;
        if (key == Qt::Key_PageDown) return KeyMeaning::ScrollPageDown;
    }
    if (modifiers == (Qt::ControlModifier | Qt::ShiftModifier)) {
        if (key == Qt::Key_C || key == Qt::Key_A) return KeyMeaning::Copy;
        if (key == Qt::Key_V) return KeyMeaning::Paste;
        if (key == Qt::Key_F) return KeyMeaning::Find;
        if (isLetter(key) || key == Qt::Key_Less || key == Qt::Key_Comma) return KeyMeaning::MenuItem;
    }
    if (terminalKeyOf(key) || !event.text().isEmpty()) return KeyMeaning::Program;
    // Control combinations for which the system has no text, the space bar among them.
    const bool control = modifiers.testFlag(Qt::ControlModifier) && controlCharacterOf(event).has_value();
    return control ? KeyMeaning::Program : KeyMeaning::Other;
}

QByteArray bytesOf(const QKeyEvent& event, const TerminalModes& modes) {
    const KeyModifiers modifiers = modifiersOf(event.modifiers());
    if (const auto key = terminalKeyOf(event.key())) {
        const CursorKeys cursor = modes.applicationCursor ? CursorKeys::Application : CursorKeys::Normal;
        const bool application = modes.applicationKeypad && event.modifiers().testFlag(Qt::KeypadModifier);
        return QByteArray::fromStdString(
            encodeKeypadKey(*key, modifiers, cursor, application ? Keypad::Application : Keypad::Normal));
    }
    if (modifiers.control()) {
        if (const auto byte = controlCharacterOf(event)) {
            return QByteArray::fromStdString(encodeText({&*byte, 1}, modifiers));
        }
    }
    return QByteArray::fromStdString(encodeText(event.text().toStdString(), modifiers));
}

int menuKeyOf(const QKeyEvent& event) {
    // Shift turns the comma of "Settings" into another character on most keyboards.
    const int key = event.key() == Qt::Key_Less ? int{Qt::Key_Comma} : event.key();
    return static_cast<int>(Qt::ControlModifier) | key;
}

}  // namespace orvo
