#include "platform/linux/MotionSetting.h"

#include "platform/PrivateBus.h"

#include <QMap>

namespace orvo {
namespace {

/// The settings portal of a desktop.
class Portal : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.portal.Settings")

public:
    explicit Portal(QDBusConnection bus) {
        EXPECT_TRUE(bus.registerObject(
            QStringLiteral("/org/freedesktop/portal/desktop"), this,
            QDBusConnection::ExportScriptableSlots | QDBusConnection::ExportScriptableSignals));
        EXPECT_TRUE(bus.registerService(QStringLiteral("org.freedesktop.portal.Desktop")));
    }
    QMap<QString, QVariant> settings;
    int asked = 0;

public Q_SLOTS:
    Q_SCRIPTABLE QDBusVariant Read(const QString& group, const QString& key) {
        ++asked;
        // Wrapped twice, as portals do it for this method.
        return QDBusVariant(QVariant::fromValue(QDBusVariant(settings.value(group + u'/' + key))));
    }

Q_SIGNALS:
    Q_SCRIPTABLE void SettingChanged(const QString& group, const QString& key, const QDBusVariant& value);
};

class MotionSettingTest : public test::PrivateBus {};

TEST_F(MotionSettingTest, followsTheDesktopFromTheStartOn) {
    Portal portal(connectAs("portal"));
    const QString group = QStringLiteral("org.gnome.desktop.interface");
    const QString key = QStringLiteral("enable-animations");
    portal.settings[group + u'/' + key] = false;
    portal.settings[QStringLiteral("org.kde.kdeglobals.KDE/AnimationDurationFactor")] = QString();

    MotionSetting motion(connectAs("client"));
    int changes = 0;
    QObject::connect(&motion, &MotionSetting::reducedChanged, [&changes] { ++changes; });
    EXPECT_FALSE(motion.isReduced());
    ASSERT_TRUE(test::waitFor([&] { return portal.asked == 2 && motion.isReduced(); }));
    Q_EMIT portal.SettingChanged(group, QStringLiteral("cursor-size"), QDBusVariant(0));
    Q_EMIT portal.SettingChanged(group, key, QDBusVariant(true));
    ASSERT_TRUE(test::waitFor([&] { return !motion.isReduced(); }));
    Q_EMIT portal.SettingChanged(QStringLiteral("org.kde.kdeglobals.KDE"),
                                 QStringLiteral("AnimationDurationFactor"),
                                 QDBusVariant(QStringLiteral("0")));
    ASSERT_TRUE(test::waitFor([&] { return motion.isReduced(); }));
    EXPECT_EQ(changes, 3);
}

TEST_F(MotionSettingTest, wantsMotionWhereNobodyAnswers) {
    MotionSetting motion(connectAs("client"));
    EXPECT_FALSE(test::waitFor([&] { return motion.isReduced(); }, std::chrono::milliseconds(300)));
}

}  // namespace
}  // namespace orvo

#include "MotionSettingTest.moc"
