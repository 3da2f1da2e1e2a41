#include "platform/linux/MotionSetting.h"

#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>

#include <algorithm>
#include <array>

namespace orvo {
namespace {

constexpr const char* service = "org.freedesktop.portal.Desktop";
constexpr const char* path = "/org/freedesktop/portal/desktop";
constexpr const char* interface = "org.freedesktop.portal.Settings";

struct Setting {
    const char* group;
    const char* key;
    bool (*isReduced)(const QVariant& value);
};

// As GNOME and those like it, and as Plasma say it.
constexpr std::array settings = {
    Setting{"org.gnome.desktop.interface", "enable-animations",
            [](const QVariant& value) {
                return !value.toBool();
            }},
    Setting{"org.kde.kdeglobals.KDE", "AnimationDurationFactor",
            [](const QVariant& value) {
                bool isNumber = false;
                const double factor = value.toDouble(&isNumber);
                return isNumber && factor <= 0;
            }},
};

/// What is inside, however often it was wrapped: older portals wrap twice.
QVariant unwrapped(QVariant value) {
    while (value.canConvert<QDBusVariant>())
        value = value.value<QDBusVariant>().variant();
    return value;
}

}  // namespace

MotionSetting::MotionSetting(QDBusConnection bus, QObject* parent) : QObject(parent), m_bus(std::move(bus)) {
    // The connection looks the parameter types up by name, where this one may not have been used before.
    qRegisterMetaType<QDBusVariant>();
    m_bus.connect(QLatin1String(service), QLatin1String(path), QLatin1String(interface),
                  QStringLiteral("SettingChanged"), this, SLOT(adopt(QString, QString, QDBusVariant)));
    for (const Setting& setting : settings)
        ask(setting.group, setting.key);
}

bool MotionSetting::isReduced() const {
    return m_wishes.values().contains(true);
}

void MotionSetting::ask(const char* group, const char* key) {
    QDBusMessage question = QDBusMessage::createMethodCall(QLatin1String(service), QLatin1String(path),
                                                           QLatin1String(interface), QStringLiteral("Read"));
    question.setAutoStartService(false);
    question << QLatin1String(group) << QLatin1String(key);
    auto* const answer = new QDBusPendingCallWatcher(m_bus.asyncCall(question), this);
    connect(answer, &QDBusPendingCallWatcher::finished, this, [this, answer, group, key] {
        const QDBusPendingReply<QDBusVariant> reply = *answer;
        // A desktop without the setting answers with an error.
        if (reply.isValid()) adopt(QLatin1String(group), QLatin1String(key), reply.value());
        answer->deleteLater();
    });
}

void MotionSetting::adopt(const QString& group, const QString& key, const QDBusVariant& value) {
    const auto named = std::ranges::find_if(settings, [&](const Setting& setting) {
        return group == QLatin1String(setting.group) && key == QLatin1String(setting.key);
    });
    if (named == settings.end()) return;
    // Several desktops' settings may be there; one that wants less motion is enough.
    const bool before = isReduced();
    m_wishes[group] = named->isReduced(unwrapped(value.variant()));
    if (isReduced() != before) Q_EMIT reducedChanged();
}

}  // namespace orvo
