#include "platform/desktop/KeyboardTyper.h"

#include "platform/desktop/KeyboardMap.h"
#include "platform/desktop/LentKeys.h"
#include "platform/desktop/XConnection.h"

#include <QList>

#include <algorithm>
#include <array>
#include <chrono>
#include <thread>

#include <xcb/xtest.h>
#include <xkbcommon/xkbcommon.h>

namespace orvo {
namespace {

// The flag of the Command modifier, which is Control on this system.
constexpr quint64 commandFlag = 0x100000;
// Characters between two looks at the front window: less than a millisecond of typing.
constexpr qsizetype betweenChecks = 8;

struct VirtualKey {
    quint16 code;
    xcb_keysym_t symbol;
};
// Virtual key codes of the ANSI keyboard.
constexpr std::array virtualKeys = {
    VirtualKey{0, XKB_KEY_a},       VirtualKey{1, XKB_KEY_s},    VirtualKey{3, XKB_KEY_f},
    VirtualKey{8, XKB_KEY_c},       VirtualKey{9, XKB_KEY_v},    VirtualKey{36, XKB_KEY_Return},
    VirtualKey{45, XKB_KEY_n},      VirtualKey{48, XKB_KEY_Tab}, VirtualKey{49, XKB_KEY_space},
    VirtualKey{53, XKB_KEY_Escape},
};

tl::unexpected<Error> refusal(const QString& sentence) {
    return failure(QStringLiteral("OrvoRuns"), sentence);
}

bool isTypeable(char32_t character) {
    switch (QChar::category(character)) {
        case QChar::Other_Control:
        case QChar::Other_Surrogate:
        case QChar::Other_PrivateUse:
        case QChar::Other_NotAssigned:
        case QChar::Separator_Line:
        case QChar::Separator_Paragraph:
            return false;
        default:
            return true;
    }
}

}  // namespace

Result<std::unique_ptr<KeyboardTyper>> KeyboardTyper::open() {
    auto connection = XConnection::open();
    if (!connection || !connection->hasTestExtension())
        return refusal(tr("macOS could not create this keyboard event."));
    return std::unique_ptr<KeyboardTyper>(new KeyboardTyper(std::move(connection)));
}

KeyboardTyper::KeyboardTyper(std::unique_ptr<XConnection> connection) : m_connection(std::move(connection)) {}

KeyboardTyper::~KeyboardTyper() = default;

Result<void> KeyboardTyper::check(const QString& line) {
    if (!line.isValidUtf16())
        return refusal(
            tr("This text is damaged: it has half a character. Nothing was typed. Make a new plan."));
    const QList<uint> characters = line.toUcs4();
    const auto wrong = std::ranges::find_if_not(characters, isTypeable);
    if (wrong == characters.end()) return {};
    return refusal(tr("This text has a character that no keyboard can type (U+%1). Nothing was typed. Adjust "
                      "your request and make a new plan.")
                       .arg(QString::number(*wrong, 16).toUpper().rightJustified(4, u'0')));
}

Result<void> KeyboardTyper::type(const QString& line, const std::stop_token& stop, const Guard& guard,
                                 const Progress& progress) {
    if (const auto released = waitForReleasedModifiers(); !released) return released;
    const auto map = KeyboardMap::read(*m_connection);
    const auto shift = map ? map->keyOf(XKB_KEY_Shift_L) : std::nullopt;
    if (!shift) return refusal(tr("macOS could not create this keyboard event."));
    LentKeys lent(*m_connection, map->unused(), map->symbolsPerKey());

    qsizetype sent = 0;
    qsizetype count = 0;
    for (const char32_t character : line.toUcs4()) {
        if (stop.stop_requested()) {
            return refusal(tr("Typing was stopped after %1 of %2 characters. Check the target app before "
                              "continuing.")
                               .arg(sent)
                               .arg(line.size()));
        }
        const auto key = map->key(character);
        if (!key && !lent.canLend()) return refusal(tr("macOS could not create this keyboard event."));
        // Before the look at the front window, since it may wait.
        const xcb_keycode_t code = key ? key->code : lent.lend(character);
        if ((!key || count++ % betweenChecks == 0) && !guard(*m_connection)) {
            if (sent == 0) {
                return refusal(
                    tr("The target app is no longer active. Nothing was typed. Try this step again."));
            }
            return refusal(tr("The target app is no longer active. Typing ended after %1 of %2 characters. "
                              "Check the target app before continuing.")
                               .arg(sent)
                               .arg(line.size()));
        }
        if (key && key->shift) send(XCB_KEY_PRESS, *shift);
        strike(code);
        if (key && key->shift) send(XCB_KEY_RELEASE, *shift);
        m_connection->synchronise();
        sent += QChar::requiresSurrogates(character) ? 2 : 1;
        progress(sent);
    }
    return {};
}

Result<void> KeyboardTyper::press(quint16 code, quint64 modifiers, const Guard& guard) {
    if (const auto released = waitForReleasedModifiers(); !released) return released;
    const auto* const wanted = std::ranges::find(virtualKeys, code, &VirtualKey::code);
    const auto map = KeyboardMap::read(*m_connection);
    const auto key = map && wanted != virtualKeys.end() ? map->keyOf(wanted->symbol) : std::nullopt;
    const auto control = map ? map->keyOf(XKB_KEY_Control_L) : std::nullopt;
    if (!key || !control) return refusal(tr("macOS could not create this keyboard event."));
    if (!guard(*m_connection))
        return refusal(tr("The target app is no longer active. Nothing was typed. Try this step again."));
    const bool command = (modifiers & commandFlag) != 0;
    if (command) send(XCB_KEY_PRESS, *control);
    strike(*key);
    if (command) send(XCB_KEY_RELEASE, *control);
    m_connection->synchronise();
    return {};
}

// A modifier that the person still holds would turn text into shortcuts.
Result<void> KeyboardTyper::waitForReleasedModifiers() const {
    constexpr auto held = XCB_KEY_BUT_MASK_SHIFT | XCB_KEY_BUT_MASK_CONTROL | XCB_KEY_BUT_MASK_MOD_1 |
                          XCB_KEY_BUT_MASK_MOD_4 | XCB_KEY_BUT_MASK_MOD_5;
    constexpr int attempts = 100;
    for (int i = 0; i < attempts; ++i) {
        const XReply<xcb_query_pointer_reply_t> pointer(xcb_query_pointer_reply(
            m_connection->get(), xcb_query_pointer(m_connection->get(), m_connection->root()), nullptr));
        if (pointer && !(pointer->mask & held)) return {};
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    return refusal(tr("A modifier key is held down. Nothing was typed. Release it and try this step again."));
}

void KeyboardTyper::strike(quint8 keycode) const {
    send(XCB_KEY_PRESS, keycode);
    send(XCB_KEY_RELEASE, keycode);
}

void KeyboardTyper::send(quint8 type, quint8 keycode) const {
    xcb_test_fake_input(m_connection->get(), type, keycode, XCB_CURRENT_TIME, XCB_NONE, 0, 0, 0);
}

}  // namespace orvo
