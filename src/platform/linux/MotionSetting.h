#pragma once

#include <QDBusConnection>
#include <QDBusVariant>
#include <QMap>
#include <QObject>

namespace orvo {

/// Whether the person wants less motion on the screen, as the desktop's settings say: asked of the settings
/// portal (org.freedesktop.portal.Settings), which is never started for it. Motion is wanted until the answer
/// comes, and where there is no portal. Main thread only.
class MotionSetting final : public QObject {
    Q_OBJECT

public:
    explicit MotionSetting(QDBusConnection bus = QDBusConnection::sessionBus(), QObject* parent = nullptr);

    bool isReduced() const;

Q_SIGNALS:
    void reducedChanged();

private Q_SLOTS:
    void adopt(const QString& group, const QString& key, const QDBusVariant& value);

private:
    void ask(const char* group, const char* key);

    QDBusConnection m_bus;
    /// By the setting's group.
    QMap<QString, bool> m_wishes;
};

}  // namespace orvo
