#include "platform/linux/FreedesktopNotifications.h"

#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QVariantMap>

#include <utility>

namespace orvo {
namespace {

constexpr const char* service = "org.freedesktop.Notifications";
constexpr const char* path = "/org/freedesktop/Notifications";
constexpr const char* interface = "org.freedesktop.Notifications";

/// A press on the notice itself, where there is no button.
const QString wholeNotice = QStringLiteral("default");
const QString button = QStringLiteral("show");

QDBusMessage callOf(const char* method) {
    return QDBusMessage::createMethodCall(QLatin1String(service), QLatin1String(path),
                                          QLatin1String(interface), QLatin1String(method));
}

}  // namespace

FreedesktopNotifications::FreedesktopNotifications(BusOnDemand bus, QObject* parent)
    : QObject(parent), m_bus(std::move(bus)) {}

// Nothing is heard of a notice before the first one.
void FreedesktopNotifications::listen() {
    if (std::exchange(m_listening, true)) return;
    const auto listenTo = [this](const char* signal, const char* slot) {
        m_bus.get().connect(QLatin1String(service), QLatin1String(path), QLatin1String(interface),
                            QLatin1String(signal), this, slot);
    };
    listenTo("ActivationToken", SLOT(takeToken(uint, QString)));
    listenTo("ActionInvoked", SLOT(takeAction(uint, QString)));
    listenTo("NotificationClosed", SLOT(takeEnd(uint, uint)));
}

FreedesktopNotifications::~FreedesktopNotifications() {
    close();
}

void FreedesktopNotifications::show(const Notice& notice) {
    m_next = notice;
    m_withdrawn = false;
    goOn();
}

void FreedesktopNotifications::withdraw() {
    m_next.reset();
    m_withdrawn = true;
    goOn();
}

/// One call at a time, so that a notice's number is known before it is replaced or taken away.
void FreedesktopNotifications::goOn() {
    if (m_step != Step::Idle) return;
    if (m_next) {
        askWhatIsUnderstood();
    } else if (std::exchange(m_withdrawn, false)) {
        close();
    }
}

void FreedesktopNotifications::askWhatIsUnderstood() {
    listen();
    m_step = Step::Asking;
    auto* const answer = new QDBusPendingCallWatcher(m_bus.get().asyncCall(callOf("GetCapabilities")), this);
    connect(answer, &QDBusPendingCallWatcher::finished, this, [this, answer] {
        const QDBusPendingReply<QStringList> reply = *answer;
        answer->deleteLater();
        m_step = Step::Idle;
        if (reply.isError()) {
            m_next.reset();
        } else if (m_next) {
            return send(*std::exchange(m_next, std::nullopt), reply.value());
        }
        goOn();
    });
}

void FreedesktopNotifications::send(const Notice& notice, const QStringList& capabilities) {
    // What a program wrote must not become a link or a picture.
    const bool markup = capabilities.contains(QStringLiteral("body-markup"));
    QDBusMessage call = callOf("Notify");
    call << QStringLiteral("Orvo AI") << m_id << QStringLiteral("orvo") << notice.title
         << (markup ? notice.body.toHtmlEscaped() : notice.body)
         << QStringList{wholeNotice, notice.action, button, notice.action}
         << QVariantMap{{QStringLiteral("desktop-entry"), QStringLiteral("orvo")}} << -1;
    m_step = Step::Showing;
    auto* const answer = new QDBusPendingCallWatcher(m_bus.get().asyncCall(call), this);
    connect(answer, &QDBusPendingCallWatcher::finished, this, [this, answer] {
        const QDBusPendingReply<uint> reply = *answer;
        answer->deleteLater();
        m_step = Step::Idle;
        m_id = reply.isError() ? 0 : reply.value();
        goOn();
    });
}

void FreedesktopNotifications::close() {
    if (m_id == 0) return;
    QDBusMessage call = callOf("CloseNotification");
    call << std::exchange(m_id, 0);
    m_bus.get().send(call);
}

void FreedesktopNotifications::takeToken(uint id, const QString& token) {
    if (id == m_id && id != 0) m_token = token.toUtf8();
}

void FreedesktopNotifications::takeAction(uint id, const QString& action) {
    if (id != m_id || id == 0 || (action != wholeNotice && action != button)) return;
    const QByteArray token = std::exchange(m_token, {});
    if (onChosen) onChosen(token);
}

void FreedesktopNotifications::takeEnd(uint id, uint /*reason*/) {
    if (id != m_id) return;
    m_id = 0;
    m_token.clear();
}

}  // namespace orvo
