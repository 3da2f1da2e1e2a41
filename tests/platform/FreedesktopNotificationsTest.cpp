#include "platform/linux/FreedesktopNotifications.h"

#include "platform/PrivateBus.h"

#include <QDBusMessage>
#include <QVariantMap>

namespace orvo {
namespace {

const QString service = QStringLiteral("org.freedesktop.Notifications");
const QString path = QStringLiteral("/org/freedesktop/Notifications");

/// A desktop's notification service on the bus of the test.
class NotificationService : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Notifications")

public:
    struct Notice {
        uint replaced = 0;
        QString title;
        QString body;
        QStringList actions;
        QString desktopEntry;
    };

    QStringList capabilities{QStringLiteral("body"), QStringLiteral("actions")};
    QList<Notice> notices;
    QList<uint> closed;
    uint lastId = 0;

public Q_SLOTS:
    QStringList GetCapabilities() { return capabilities; }
    uint Notify(const QString& application, uint replaces, const QString& /*icon*/, const QString& title,
                const QString& body, const QStringList& actions, const QVariantMap& hints, int /*expires*/) {
        EXPECT_EQ(application, u"Orvo AI");
        notices.append({replaces, title, body, actions, hints[QStringLiteral("desktop-entry")].toString()});
        if (replaces == 0) ++lastId;
        return replaces == 0 ? lastId : replaces;
    }
    void CloseNotification(uint id) { closed.append(id); }
};

class FreedesktopNotificationsTest : public test::PrivateBus {
protected:
    void SetUp() override {
        PrivateBus::SetUp();
        if (IsSkipped()) return;
        m_server = connectAs("notification service");
        m_client = connectAs("notification client");
        ASSERT_TRUE(m_server.isConnected() && m_client.isConnected());
    }

    void startService() {
        ASSERT_TRUE(m_server.registerObject(path, &m_service, QDBusConnection::ExportAllSlots));
        ASSERT_TRUE(m_server.registerService(service));
    }

    void emitSignal(const char* name, const QVariantList& arguments) {
        QDBusMessage signal = QDBusMessage::createSignal(path, service, QLatin1String(name));
        signal.setArguments(arguments);
        ASSERT_TRUE(m_server.send(signal));
    }

    static DesktopNotifications::Notice notice(const char* body) {
        return {QStringLiteral("claude wants you"), QString::fromUtf8(body), QStringLiteral("Show")};
    }

    NotificationService m_service;
    QDBusConnection m_server{QString()};
    QDBusConnection m_client{QString()};
};

TEST_F(FreedesktopNotificationsTest, aNewNoticeTakesThePlaceOfTheOneThatIsShown) {
    ASSERT_NO_FATAL_FAILURE(startService());
    FreedesktopNotifications notifications(m_client);
    notifications.show(notice("bell"));
    notifications.show(notice("a < b"));
    ASSERT_TRUE(test::waitFor([&] { return m_service.notices.size() == 1; }));
    EXPECT_EQ(m_service.notices[0].title, u"claude wants you");
    EXPECT_EQ(m_service.notices[0].body, u"a < b") << "nothing but the latest is shown";
    EXPECT_EQ(m_service.notices[0].actions, (QStringList{QStringLiteral("default"), QStringLiteral("Show"),
                                                         QStringLiteral("show"), QStringLiteral("Show")}));
    EXPECT_EQ(m_service.notices[0].desktopEntry, u"orvo");

    m_service.capabilities.append(QStringLiteral("body-markup"));
    notifications.show(notice("<a href=\"http://x.org\">a & b</a>"));
    ASSERT_TRUE(test::waitFor([&] { return m_service.notices.size() == 2; }));
    EXPECT_EQ(m_service.notices[1].replaced, 1u);
    EXPECT_EQ(m_service.notices[1].body, u"&lt;a href=&quot;http://x.org&quot;&gt;a &amp; b&lt;/a&gt;");

    notifications.withdraw();
    EXPECT_TRUE(test::waitFor([&] { return m_service.closed == QList<uint>{1}; }));
}

TEST_F(FreedesktopNotificationsTest, theButtonOfOurNoticeAloneCallsBack) {
    ASSERT_NO_FATAL_FAILURE(startService());
    FreedesktopNotifications notifications(m_client);
    QList<QByteArray> chosen;
    notifications.onChosen = [&chosen](const QByteArray& token) {
        chosen.append(token);
    };
    notifications.show(notice("bell"));
    ASSERT_TRUE(test::waitFor([&] { return m_service.notices.size() == 1; }));
    emitSignal("ActionInvoked", {uint{77}, QStringLiteral("show")});
    emitSignal("ActionInvoked", {uint{1}, QStringLiteral("something else")});
    emitSignal("ActivationToken", {uint{1}, QStringLiteral("token-1")});
    emitSignal("ActionInvoked", {uint{1}, QStringLiteral("default")});
    emitSignal("ActionInvoked", {uint{1}, QStringLiteral("show")});
    ASSERT_TRUE(test::waitFor([&] { return chosen.size() == 2; }));
    EXPECT_EQ(chosen, (QList<QByteArray>{"token-1", ""}));

    // One that the person has put away is not replaced, and another program's end is not ours.
    emitSignal("NotificationClosed", {uint{77}, uint{2}});
    emitSignal("NotificationClosed", {uint{1}, uint{2}});
    emitSignal("ActionInvoked", {uint{1}, QStringLiteral("show")});
    notifications.show(notice("bell"));
    ASSERT_TRUE(test::waitFor([&] { return m_service.notices.size() == 2; }));
    EXPECT_EQ(chosen.size(), 2) << "the notice was gone already";
}

TEST_F(FreedesktopNotificationsTest, aNoticeThatIsWithdrawnOnItsWayIsTakenAway) {
    ASSERT_NO_FATAL_FAILURE(startService());
    {
        FreedesktopNotifications notifications(m_client);
        notifications.show(notice("bell"));
        ASSERT_TRUE(test::waitFor([&] { return m_service.notices.size() == 1; }));
        notifications.withdraw();
        ASSERT_TRUE(test::waitFor([&] { return m_service.closed == QList<uint>{1}; }));
        notifications.show(notice("again"));
        ASSERT_TRUE(test::waitFor([&] { return m_service.notices.size() == 2; }));
        // The answer to Notify is on its way, too.
        notifications.show(notice("and again"));
        ASSERT_TRUE(test::waitFor([&] { return m_service.notices.size() == 3; }));
        EXPECT_EQ(m_service.notices[2].replaced, 2u);
        notifications.withdraw();
        ASSERT_TRUE(test::waitFor([&] { return m_service.closed == (QList<uint>{1, 2}); }));
    }
    EXPECT_EQ(m_service.closed.size(), 2);
}

TEST_F(FreedesktopNotificationsTest, aDesktopWithoutNotificationsIsLeftAlone) {
    FreedesktopNotifications notifications(m_client);
    notifications.show(notice("lost"));
    notifications.withdraw();
    // One that comes later is used for what is shown later.
    ASSERT_NO_FATAL_FAILURE(startService());
    ASSERT_TRUE(test::waitFor([&] {
        if (m_service.notices.isEmpty()) notifications.show(notice("bell"));
        return !m_service.notices.isEmpty();
    }));
    EXPECT_EQ(m_service.notices[0].body, u"bell");
}

}  // namespace
}  // namespace orvo

#include "FreedesktopNotificationsTest.moc"
