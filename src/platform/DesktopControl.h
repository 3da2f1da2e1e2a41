#pragma once

#include "platform/Result.h"

#include <QString>
#include <QUrl>

#include <functional>
#include <optional>

namespace orvo {

/// An application that is installed on this desktop.
struct InstalledApplication {
    /// The desktop's own id for it, such as "org.gnome.TextEditor.desktop".
    QString id;
    QString name;

    bool operator==(const InstalledApplication&) const = default;
};

/// An application that has been opened. Which windows count as its own is the desktop's matter: a wrapper's
/// child and a running instance that took the request over belong to it too.
struct RunningApplication {
    /// Of the process that was started.
    qint64 processID = 0;
    InstalledApplication application;

    bool operator==(const RunningApplication&) const = default;
};

/// The places in the desktop's settings that Mac actions point at.
enum class SettingsPage { Accessibility, ScreenRecording };

/// Opens applications and sends them keyboard input. Main thread only; completions arrive on the main thread,
/// later than the call that asked for them, and not once the object is gone.
class DesktopControl {
public:
    virtual ~DesktopControl() = default;

    /// Whether keyboard input can really be delivered to other applications here. No question is asked.
    virtual bool isTrusted() const = 0;
    /// What the person may do about it when it cannot; empty when nothing is known.
    virtual QString trustHint() const = 0;
    virtual Result<void> openSettings(SettingsPage page) = 0;

    /// By bundle identifier, desktop-entry id, path of a desktop entry, or name; nothing when none is
    /// installed.
    virtual std::optional<InstalledApplication> application(const QString& identifier) const = 0;

    /// A running application, nothing when it ended at once, or why it could not be started.
    using Opened = std::function<void(Result<std::optional<RunningApplication>>)>;
    /// Starts or activates it.
    virtual void openApplication(const InstalledApplication& application, Opened done) = 0;
    using Done = std::function<void(Result<void>)>;
    virtual void openAddress(const QUrl& address, const InstalledApplication& application, Done done) = 0;

    virtual bool isTerminated(const RunningApplication& application) const = 0;
    /// Whether the window that has the keyboard belongs to it.
    virtual bool isFrontmost(const RunningApplication& application) const = 0;

    /// Why this line cannot be typed here, character for character; success when it can.
    virtual Result<void> checkTypeable(const QString& line) const = 0;
    /// How many of the line's UTF-16 units have been sent.
    using Progress = std::function<void(qsizetype sent)>;
    /// Types one line into the focused control of the frontmost window, and stops with an error as soon as
    /// that window is not the application's any more. One job at a time.
    virtual void typeLine(const RunningApplication& application, const QString& line, Progress progress,
                          Done done) = 0;
    /// Presses and releases one key there: virtual key code of the ANSI keyboard and modifier flags, as in
    /// the plans' key table.
    virtual void pressKey(const RunningApplication& application, quint16 code, quint64 modifiers,
                          Done done) = 0;
    /// Ends typing after the characters that are on their way; its `done` gets an error.
    virtual void cancelTyping() = 0;
};

}  // namespace orvo
