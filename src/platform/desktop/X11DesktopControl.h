#pragma once

#include "platform/DesktopControl.h"

#include <QObject>
#include <QPointer>

#include <map>
#include <memory>
#include <stop_token>

namespace orvo {

class KeyboardTyper;
class SerialQueue;
class XConnection;

/// Applications by desktop entries, keyboard input through the X server's test extension. On Wayland there is
/// no way to reach other programs' windows, so nothing is trusted there.
class X11DesktopControl final : public QObject, public DesktopControl {
    Q_OBJECT

public:
    explicit X11DesktopControl(QObject* parent = nullptr);
    /// Typing that goes on is stopped.
    ~X11DesktopControl() override;

    bool isTrusted() const override;
    QString trustHint() const override;
    Result<void> openSettings(SettingsPage page) override;
    std::optional<InstalledApplication> application(const QString& identifier) const override;
    void openApplication(const InstalledApplication& application, Opened done) override;
    void openAddress(const QUrl& address, const InstalledApplication& application, Done done) override;
    bool isTerminated(const RunningApplication& application) const override;
    bool isFrontmost(const RunningApplication& application) const override;
    Result<void> checkTypeable(const QString& line) const override;
    void typeLine(const RunningApplication& application, const QString& line, Progress progress,
                  Done done) override;
    void pressKey(const RunningApplication& application, quint16 code, quint64 modifiers, Done done) override;
    void cancelTyping() override;

private:
    struct Launched;

    /// Brings a window of the running application to the front; nothing when there is none.
    std::optional<RunningApplication> activate(const InstalledApplication& application);
    Result<qint64> launch(const InstalledApplication& application, const QUrl& address);
    void later(std::function<void()> work);
    using Input = std::function<Result<void>(KeyboardTyper&)>;
    /// Sends it on the typing thread.
    void input(Input send, Done done);
    static void deliver(const QPointer<X11DesktopControl>& desktop, std::function<void()> work);

    /// Null when there is no server, or none that lets us type.
    std::unique_ptr<XConnection> m_connection;
    std::shared_ptr<SerialQueue> m_typing;
    std::stop_source m_stop;
    /// Processes that we started, until they have ended, and those that ended badly.
    std::map<qint64, std::unique_ptr<Launched>> m_launched;
};

}  // namespace orvo
