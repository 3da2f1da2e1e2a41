#include "platform/desktop/panelHints.h"

#include <QtGui/qguiapplication_platform.h>
#include <QGuiApplication>
#include <QWindow>

#include <cstdlib>
#include <cstring>
#include <memory>

#include <xcb/xcb.h>

namespace orvo {
namespace {

// Freedesktop's Extended Window Manager Hints: the desktop number that means all of them.
constexpr std::uint32_t allDesktops = 0xFFFFFFFF;

/// Null off X11. Qt owns it.
xcb_connection_t* connection() {
    const auto* const x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    return x11 ? x11->connection() : nullptr;
}

xcb_atom_t atom(xcb_connection_t* x, const char* name) {
    const auto asked = xcb_intern_atom(x, 0, static_cast<std::uint16_t>(std::strlen(name)), name);
    const std::unique_ptr<xcb_intern_atom_reply_t, decltype(&std::free)> answer(
        xcb_intern_atom_reply(x, asked, nullptr), std::free);
    return answer ? answer->atom : static_cast<xcb_atom_t>(XCB_ATOM_NONE);
}

}  // namespace

void stayOnAllDesktops(const QWindow& window) {
    xcb_connection_t* const x = connection();
    if (!x) return;
    xcb_change_property(x, XCB_PROP_MODE_REPLACE, static_cast<xcb_window_t>(window.winId()),
                        atom(x, "_NET_WM_DESKTOP"), XCB_ATOM_CARDINAL, 32, 1, &allDesktops);
}

bool hasStatusItems() {
    return connection() || QGuiApplication::platformName().startsWith(QStringLiteral("wayland"));
}

bool isComposited() {
    xcb_connection_t* const x = connection();
    if (!x) return true;
    // The compositing manager of screen 0 owns this selection while it runs.
    const auto asked = xcb_get_selection_owner(x, atom(x, "_NET_WM_CM_S0"));
    const std::unique_ptr<xcb_get_selection_owner_reply_t, decltype(&std::free)> answer(
        xcb_get_selection_owner_reply(x, asked, nullptr), std::free);
    return answer && answer->owner != XCB_WINDOW_NONE;
}

}  // namespace orvo
