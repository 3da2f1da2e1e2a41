#pragma once

#include "support/WaitFor.h"

#include <gtest/gtest.h>

#include <QDBusConnection>
#include <QProcess>
#include <QStringList>

namespace orvo::test {

/// A message bus of this test's own.
class PrivateBus : public testing::Test {
protected:
    void SetUp() override {
        m_daemon.start(
            QStringLiteral("dbus-daemon"),
            {QStringLiteral("--session"), QStringLiteral("--nofork"), QStringLiteral("--print-address=1")});
        if (!m_daemon.waitForStarted()) GTEST_SKIP() << "dbus-daemon is not installed";
        ASSERT_TRUE(waitFor([&] { return m_daemon.canReadLine(); }));
        m_address = QString::fromLatin1(m_daemon.readLine().trimmed());
    }
    void TearDown() override {
        for (const QString& name : std::as_const(m_names))
            QDBusConnection::disconnectFromBus(name);
        m_daemon.kill();
        m_daemon.waitForFinished();
    }

    const QString& address() const { return m_address; }
    /// A connection of this name, ended with the test.
    QDBusConnection connectAs(const char* name) {
        m_names.append(QLatin1String(name));
        return QDBusConnection::connectToBus(m_address, m_names.last());
    }

private:
    QProcess m_daemon;
    QString m_address;
    QStringList m_names;
};

}  // namespace orvo::test
