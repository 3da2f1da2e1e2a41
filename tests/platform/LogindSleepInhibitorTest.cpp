#include "platform/linux/LogindSleepInhibitor.h"

#include "platform/PrivateBus.h"
#include "platform/linux/LoadedSleepInhibitor.h"

#include <gtest/gtest.h>

#include <QDBusArgument>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QElapsedTimer>
#include <QProcess>

namespace orvo {
namespace {

const QString service = QStringLiteral("org.freedesktop.login1");

class LogindSleepInhibitorTest : public test::PrivateBus {
protected:
    void SetUp() override {
        PrivateBus::SetUp();
        m_client = connectAs("client");
        ASSERT_TRUE(m_client.isConnected());
    }
    void TearDown() override {
        m_logind.kill();
        m_logind.waitForFinished();
        PrivateBus::TearDown();
    }

    void startLogind() {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("DBUS_SYSTEM_BUS_ADDRESS"), address());
        m_logind.setProcessEnvironment(environment);
        // The system's own interpreter, because another one in PATH does not see the distribution's modules.
        m_logind.start(QStringLiteral("/usr/bin/python3"),
                       {QStringLiteral("-m"), QStringLiteral("dbusmock"), QStringLiteral("--system"),
                        QStringLiteral("--template"), QStringLiteral("logind")});
        const bool present = m_logind.waitForStarted() && test::waitFor([&] {
                                 return m_logind.state() == QProcess::NotRunning ||
                                        m_client.interface()->isServiceRegistered(service);
                             });
        if (!present || m_logind.state() == QProcess::NotRunning)
            GTEST_SKIP() << "python3-dbusmock is missing";
    }

    /// What, who, why and mode of each inhibitor that logind holds.
    QList<QStringList> inhibitors() const {
        const QDBusMessage answer = m_client.call(QDBusMessage::createMethodCall(
            service, QStringLiteral("/org/freedesktop/login1"),
            QStringLiteral("org.freedesktop.login1.Manager"), QStringLiteral("ListInhibitors")));
        EXPECT_EQ(answer.type(), QDBusMessage::ReplyMessage) << qPrintable(answer.errorMessage());
        if (answer.arguments().isEmpty()) return {};
        QList<QStringList> found;
        const auto list = answer.arguments().constFirst().value<QDBusArgument>();
        list.beginArray();
        while (!list.atEnd()) {
            QStringList entry(4);
            uint user = 0;
            uint process = 0;
            list.beginStructure();
            list >> entry[0] >> entry[1] >> entry[2] >> entry[3] >> user >> process;
            list.endStructure();
            found.append(entry);
        }
        list.endArray();
        return found;
    }

    QProcess m_logind;
    QDBusConnection m_client{QString()};
};

TEST_F(LogindSleepInhibitorTest, holdsIdleSleepOffForAsLongAsTheAssertionLives) {
    ASSERT_NO_FATAL_FAILURE(startLogind());
    if (IsSkipped()) return;
    LogindSleepInhibitor inhibitor(m_client);
    auto first = inhibitor.hold(QStringLiteral("Orvo is running a task"));
    ASSERT_NE(first, nullptr);
    const QList<QStringList> held = inhibitors();
    ASSERT_EQ(held.size(), 1);
    EXPECT_EQ(held[0].join(u'|'), QStringLiteral("idle|Orvo AI|Orvo is running a task|block"));

    auto second = inhibitor.hold(QStringLiteral("again"));
    first.reset();
    EXPECT_TRUE(test::waitFor([&] { return inhibitors().size() == 1; }));
    second.reset();
    EXPECT_TRUE(test::waitFor([&] { return inhibitors().isEmpty(); }));
}

TEST_F(LogindSleepInhibitorTest, theModuleHoldsThroughTheSystemsOwnBus) {
    ASSERT_NO_FATAL_FAILURE(startLogind());
    if (IsSkipped()) return;
    qputenv("DBUS_SYSTEM_BUS_ADDRESS", address().toLatin1());
    LoadedSleepInhibitor inhibitor;
    auto first = inhibitor.hold(QStringLiteral("first"));
    auto second = inhibitor.hold(QStringLiteral("second"));
    EXPECT_NE(first, nullptr);
    EXPECT_NE(second, nullptr);
    EXPECT_EQ(inhibitors().size(), 2);
    first.reset();
    second.reset();
    EXPECT_TRUE(test::waitFor([&] { return inhibitors().isEmpty(); }));
    qunsetenv("DBUS_SYSTEM_BUS_ADDRESS");
    QDBusConnection::disconnectFromBus(QStringLiteral("qt_default_system_bus"));
}

TEST_F(LogindSleepInhibitorTest, withoutLogindOrBusNothingIsHeld) {
    EXPECT_EQ(LogindSleepInhibitor(m_client).hold(QStringLiteral("x")), nullptr);
    EXPECT_EQ(LogindSleepInhibitor(QDBusConnection(QStringLiteral("nobody"))).hold(QStringLiteral("x")),
              nullptr);
}

TEST_F(LogindSleepInhibitorTest, aServiceThatDoesNotAnswerIsGivenUpAfterTwoSeconds) {
    QDBusConnection other = connectAs("other");
    ASSERT_TRUE(other.registerService(service));
    // Nobody runs this connection's objects while the call blocks, so no answer comes.
    QObject silent;
    ASSERT_TRUE(other.registerObject(QStringLiteral("/org/freedesktop/login1"), &silent));
    QElapsedTimer timer;
    timer.start();
    EXPECT_EQ(LogindSleepInhibitor(m_client).hold(QStringLiteral("x")), nullptr);
    EXPECT_LT(timer.elapsed(), 10'000);
}

}  // namespace
}  // namespace orvo
