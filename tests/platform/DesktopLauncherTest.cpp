#include "platform/desktop/DesktopLauncher.h"

#include "platform/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <QDesktopServices>

#include <sys/stat.h>

namespace orvo {

/// Takes the addresses that the desktop would get.
class AddressCatcher final : public QObject {
    Q_OBJECT

public:
    AddressCatcher() {
        for (const char* scheme : schemes) {
            QDesktopServices::setUrlHandler(QLatin1String(scheme), this, "take");
        }
    }
    ~AddressCatcher() override {
        for (const char* scheme : schemes)
            QDesktopServices::unsetUrlHandler(QLatin1String(scheme));
    }

    QList<QByteArray> taken;

public Q_SLOTS:
    void take(const QUrl& address) { taken.append(address.toEncoded()); }

private:
    static constexpr const char* schemes[] = {"file", "http", "https", "javascript"};
};

namespace {

TEST(DesktopLauncher, opensFoldersByTheirExactBytes) {
    const test::TemporaryFolder temporary;
    AddressCatcher desktop;
    DesktopLauncher launcher;
    for (const QByteArray& name : {QByteArray("a b#c?d%41"), QByteArray("not utf-8 \xFF")}) {
        const FilePath folder = temporary.child(name);
        ASSERT_EQ(mkdir(folder.bytes().constData(), 0700), 0);
        EXPECT_TRUE(launcher.openFolder(folder));
        const QByteArray opened = QByteArray::fromPercentEncoding(desktop.taken.constLast());
        EXPECT_EQ(opened, "file://" + folder.bytes());
    }
    test::writeFile(temporary.child("file"), "");
    for (const char* name : {"file", "missing"}) {
        const Result<void> opened = launcher.openFolder(temporary.child(name));
        ASSERT_FALSE(opened);
        EXPECT_EQ(opened.error().message, QStringLiteral("This folder is no longer available."));
    }
    EXPECT_EQ(desktop.taken.size(), 2);
}

TEST(DesktopLauncher, opensWebAddressesOnly) {
    AddressCatcher desktop;
    DesktopLauncher launcher;
    EXPECT_TRUE(launcher.openAddress(QUrl(QStringLiteral("https://example.org/a?b=c"))));
    EXPECT_EQ(desktop.taken, QList<QByteArray>{"https://example.org/a?b=c"});
    for (const char* address :
         {"", "https:///path", "file:///etc/passwd", "javascript:alert(1)", "example.org"}) {
        EXPECT_FALSE(launcher.openAddress(QUrl(QLatin1String(address)))) << address;
    }
    EXPECT_EQ(desktop.taken.size(), 1);
}

}  // namespace
}  // namespace orvo

#include "DesktopLauncherTest.moc"
