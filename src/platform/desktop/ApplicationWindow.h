#pragma once

#include "platform/DesktopControl.h"

#include <QByteArray>
#include <QList>

#include <optional>

#include <xcb/xcb.h>

namespace orvo {

class XConnection;

/// A window of some application, as the window manager tells.
struct ApplicationWindow {
    xcb_window_t id = XCB_WINDOW_NONE;
    /// 0 when the window does not say.
    qint64 processID = 0;
    /// Instance and class name of the window.
    QByteArray instanceName;
    QByteArray className;

    /// The one that has the keyboard; nothing when none has it, or no window manager says which.
    static std::optional<ApplicationWindow> inFront(const XConnection& connection);
    /// From the topmost down.
    static QList<ApplicationWindow> all(const XConnection& connection);

    /// Asks the window manager to bring it to the front, out of its icon too, and to give it the keyboard.
    void activate(const XConnection& connection) const;

    /// Whether it is one of the application's: its process or a descendant of it, or a window of the class
    /// that the application's entry names. The second holds for programs that hand over to a running
    /// instance of themselves. `windowClass` is the entry's StartupWMClass, or empty.
    bool belongsTo(const RunningApplication& application, const QByteArray& windowClass) const;
};

}  // namespace orvo
