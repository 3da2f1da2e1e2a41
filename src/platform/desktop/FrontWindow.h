#pragma once

#include "platform/DesktopControl.h"

#include <QByteArray>

#include <optional>

namespace orvo {

class XConnection;

/// The window that has the keyboard, as the window manager tells.
struct FrontWindow {
    /// 0 when the window does not say.
    qint64 processID = 0;
    /// Instance and class name of the window.
    QByteArray instanceName;
    QByteArray className;

    /// Nothing when no window has the keyboard, or no window manager says which.
    static std::optional<FrontWindow> find(const XConnection& connection);

    /// Whether it is one of the application's: its process or a descendant of it, or a window of the class
    /// that the application's entry names. The second holds for programs that hand over to a running
    /// instance of themselves. `windowClass` is the entry's StartupWMClass, or empty.
    bool belongsTo(const RunningApplication& application, const QByteArray& windowClass) const;
};

}  // namespace orvo
