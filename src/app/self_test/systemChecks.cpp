// What this computer offers around the application.

#include "app/self_test/SelfTest.h"
#include "appearance/controls/symbols.h"
#include "platform/SpeechRecognition.h"
#include "platform/images/QtImageDecoder.h"
#include "platform/voice/VoiceServices.h"
#include "workspace/Workspace.h"

#include <QBuffer>
#include <QColor>
#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QFile>
#include <QFontDatabase>
#include <QFontMetrics>
#include <QImage>
#include <QPainter>
#include <QStandardPaths>

#include <array>

#include <unistd.h>

namespace orvo {
namespace {

QString tr(const char* text) {
    return QCoreApplication::translate("SelfTest", text);
}

// A bus that is asked has answered within milliseconds; one that hangs must not hold up the other checks.
constexpr int busPatienceMs = 2000;

Finding programsAreThere(const CheckRoom& room) {
    if (access("/bin/zsh", X_OK) != 0) return checkFailed(tr("/bin/zsh is missing; every session needs it."));
    QStringList missing;
    for (const char* const name : {"python3", "node", "git"}) {
        const QString text = QString::fromLatin1(name);
        if (!room.workspace.assistants().executablePath(text)) missing.append(text);
    }
    return missing.isEmpty() ? QString() : tr("not installed: %1").arg(missing.join(QStringLiteral(", ")));
}

bool hasInk(const QImage& image) {
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (qAlpha(image.pixel(x, y)) != 0) return true;
        }
    }
    return false;
}

Finding drawingWorks(const CheckRoom&) {
    if (!hasInk(symbolPixmap(QStringLiteral("folder"), Qt::black, 16, 1).toImage())) {
        return checkFailed(tr("Icons stay blank; the SVG support of Qt may be missing."));
    }
    QImage canvas(200, 40, QImage::Format_ARGB32_Premultiplied);
    canvas.fill(Qt::transparent);
    QPainter painter(&canvas);
    painter.drawText(canvas.rect(), Qt::AlignCenter, QStringLiteral("Orvo AI"));
    painter.end();
    if (!hasInk(canvas)) return checkFailed(tr("Text stays blank; no font is installed."));
    const QStringList families = QFontDatabase::families();
    QStringList missing;
    for (const char* const name : {"Inter", "JetBrains Mono", "Noto Color Emoji"}) {
        if (!families.contains(QString::fromLatin1(name))) missing.append(QString::fromLatin1(name));
    }
    return missing.isEmpty()
               ? QString()
               : tr("fonts that others stand in for: %1").arg(missing.join(QStringLiteral(", ")));
}

Finding picturesAreRead(const CheckRoom&) {
    QImage picture(40, 30, QImage::Format_RGB32);
    picture.fill(Qt::red);
    const QtImageDecoder decoder;
    for (const char* const format : {"PNG", "JPEG"}) {
        QByteArray bytes;
        QBuffer buffer(&bytes);
        if (!picture.save(&buffer, format))
            return checkFailed(tr("No %1 can be written.").arg(QString::fromLatin1(format)));
        if (decoder.frameSizes(bytes) != QList<std::optional<QSize>>{picture.size()} ||
            !decoder.decode(bytes)) {
            return checkFailed(tr("No %1 can be read.").arg(QString::fromLatin1(format)));
        }
    }
    return QString();
}

enum class Presence { Present, Missing, Silent };

QStringList namesOn(const QDBusConnection& bus, const char* method, Presence& presence) {
    const QDBusMessage answer =
        bus.call(QDBusMessage::createMethodCall(
                     QStringLiteral("org.freedesktop.DBus"), QStringLiteral("/org/freedesktop/DBus"),
                     QStringLiteral("org.freedesktop.DBus"), QString::fromLatin1(method)),
                 QDBus::Block, busPatienceMs);
    if (answer.type() != QDBusMessage::ReplyMessage) presence = Presence::Silent;
    return answer.arguments().value(0).toStringList();
}

/// Names of what the bus lacks; `presence` tells of the bus itself.
QStringList missingOn(const QDBusConnection& bus,
                      std::initializer_list<std::pair<const char*, QString>> services, Presence& presence) {
    presence = bus.isConnected() ? Presence::Present : Presence::Missing;
    QStringList names;
    if (presence == Presence::Present) names = namesOn(bus, "ListNames", presence);
    // What is not running yet but would be started when asked for is there, too.
    if (presence == Presence::Present) names += namesOn(bus, "ListActivatableNames", presence);
    QStringList missing;
    for (const auto& [name, meaning] : services) {
        if (!names.contains(QString::fromLatin1(name))) missing.append(meaning);
    }
    return missing;
}

Finding servicesAreNamed(const CheckRoom&) {
    Presence session;
    QStringList missing = missingOn(QDBusConnection::sessionBus(),
                                    {{"org.freedesktop.Notifications", tr("notifications")},
                                     {"org.kde.StatusNotifierWatcher", tr("status items")},
                                     {"org.a11y.Bus", tr("accessibility")}},
                                    session);
    Presence system;
    missing += missingOn(QDBusConnection::systemBus(),
                         {{"org.freedesktop.login1", tr("keeping the computer awake")}}, system);
    if (QStandardPaths::findExecutable(QStringLiteral("speech-dispatcher")).isEmpty()) {
        missing.append(tr("reading aloud"));
    }
    VoiceServices voice(nullptr);
    if (!voice.recognition().recognizer(QStringLiteral("en_US"))) missing.append(tr("dictation in English"));
    if (session == Presence::Missing) missing.prepend(tr("the session bus"));
    if (system == Presence::Missing) missing.prepend(tr("the system bus"));
    if (qEnvironmentVariableIsEmpty("DISPLAY") && qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY")) {
        missing.append(tr("a display"));
    }
    // A bus that takes calls and leaves them unanswered would hold up the window.
    if (session == Presence::Silent || system == Presence::Silent) {
        return checkFailed(tr("A message bus is there but does not answer."));
    }
    return missing.isEmpty() ? tr("all are there")
                             : tr("missing here: %1").arg(missing.join(QStringLiteral(", ")));
}

constexpr std::array checks = {
    Check{QT_TRANSLATE_NOOP("SelfTest", "The programs that sessions need are installed"), programsAreThere},
    Check{QT_TRANSLATE_NOOP("SelfTest", "Icons and text are drawn"), drawingWorks},
    Check{QT_TRANSLATE_NOOP("SelfTest", "Pictures are read"), picturesAreRead},
    Check{QT_TRANSLATE_NOOP("SelfTest", "The desktop's services answer or are named as missing"),
          servicesAreNamed},
};

}  // namespace

std::span<const Check> systemChecks() {
    return checks;
}

}  // namespace orvo
