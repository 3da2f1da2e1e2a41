#pragma once

#include "platform/DesktopNotifications.h"
#include "platform/linux/BusOnDemand.h"

#include <QObject>
#include <QStringList>

#include <optional>

class QDBusMessage;

namespace orvo {

/// Notices by way of org.freedesktop.Notifications. Nothing here waits for an answer.
class FreedesktopNotifications final : public QObject, public DesktopNotifications {
    Q_OBJECT

public:
    explicit FreedesktopNotifications(BusOnDemand bus = BusOnDemand(QDBusConnection::sessionBus),
                                      QObject* parent = nullptr);
    /// Takes the notice away: nobody would hear the button any more.
    ~FreedesktopNotifications() override;

    void show(const Notice& notice) override;
    void withdraw() override;

private Q_SLOTS:
    void takeToken(uint id, const QString& token);
    void takeAction(uint id, const QString& action);
    void takeEnd(uint id, uint reason);

private:
    enum class Step { Idle, Asking, Showing };

    void listen();
    void goOn();
    void askWhatIsUnderstood();
    void send(const Notice& notice, const QStringList& capabilities);
    void close();

    BusOnDemand m_bus;
    bool m_listening = false;
    Step m_step = Step::Idle;
    /// What is still to be shown.
    std::optional<Notice> m_next;
    bool m_withdrawn = false;
    /// Of the notice that is shown; 0 for none.
    uint m_id = 0;
    QByteArray m_token;
};

}  // namespace orvo
