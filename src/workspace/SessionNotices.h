#pragma once

#include <QList>
#include <QObject>
#include <QUuid>

#include <functional>
#include <memory>
#include <vector>

namespace orvo {

class Clock;
class DesktopNotifications;
class Preferences;
class TerminalSession;
class Workspace;

/// The listed sessions whose programs want the person, in creation order.
std::vector<std::shared_ptr<TerminalSession>> sessionsAsking(const Workspace& workspace);
/// A line for each of them with its evidence, "claude: bell 12 s ago"; empty when none asks.
QString askingText(const Workspace& workspace);

/// Tells the person by a notice of the desktop when sessions that are not in front ask for them: one notice
/// for all, once for each time a session begins to ask, gone when they have been looked at. Main thread only;
/// everything passed in outlives it.
class SessionNotices final : public QObject {
    Q_OBJECT

public:
    /// Called when the person wants to see the session, which is in front of the others by then.
    using ShowWindow = std::function<void(const QByteArray& activationToken)>;

    SessionNotices(Workspace& workspace, Clock& clock, const Preferences& preferences,
                   DesktopNotifications& notifications, ShowWindow showWindow, QObject* parent = nullptr);
    ~SessionNotices() override;

private:
    void refresh();
    void tell();
    void showAsked(const QByteArray& activationToken);

    Workspace& m_workspace;
    Clock& m_clock;
    const Preferences& m_preferences;
    DesktopNotifications& m_notifications;
    ShowWindow m_showWindow;
    /// Sessions that ask, in the order in which they began to.
    QList<QUuid> m_asking;
    /// Those of them that the notice has told of.
    QList<QUuid> m_told;
    bool m_due = false;
};

}  // namespace orvo
