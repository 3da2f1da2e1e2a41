#pragma once

#include <QByteArray>
#include <QString>

#include <functional>

namespace orvo {

/// A notice of ours among the desktop's notifications; there is one at most. Main thread only.
class DesktopNotifications {
public:
    struct Notice {
        QString title;
        /// Plain text of one or more lines.
        QString body;
        /// What the notice's button is called.
        QString action;

        bool operator==(const Notice&) const = default;
    };

    virtual ~DesktopNotifications() = default;

    /// In place of the notice that is shown, if any. Nothing happens on a desktop without notifications.
    virtual void show(const Notice& notice) = 0;
    virtual void withdraw() = 0;

    /// The person has pressed the notice or its button. The token lets a window come to the front; empty
    /// where the desktop gives none.
    std::function<void(const QByteArray& activationToken)> onChosen;
};

}  // namespace orvo
