#include "platform/linux/LogindSleepInhibitor.h"

#include "platform/FileDescriptor.h"

#include <QDBusMessage>
#include <QDBusUnixFileDescriptor>

#include <chrono>

#include <fcntl.h>

namespace orvo {
namespace {

constexpr std::chrono::milliseconds answerLimit = std::chrono::seconds(2);

class LogindAssertion final : public SleepInhibitor::Assertion {
public:
    explicit LogindAssertion(FileDescriptor descriptor) : m_descriptor(std::move(descriptor)) {}

private:
    FileDescriptor m_descriptor;
};

}  // namespace

LogindSleepInhibitor::LogindSleepInhibitor(BusOnDemand bus) : m_bus(std::move(bus)) {}

std::unique_ptr<SleepInhibitor::Assertion> LogindSleepInhibitor::hold(const QString& reason) {
    QDBusMessage request = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.login1"), QStringLiteral("/org/freedesktop/login1"),
        QStringLiteral("org.freedesktop.login1.Manager"), QStringLiteral("Inhibit"));
    // Idle only: the person may still put the machine to sleep by hand.
    request << QStringLiteral("idle") << QStringLiteral("Orvo AI") << reason << QStringLiteral("block");
    // The message keeps a duplicate of the descriptor until the end of this function; ours is another one.
    const QDBusMessage answer =
        m_bus.get().call(request, QDBus::Block, static_cast<int>(answerLimit.count()));
    if (answer.type() != QDBusMessage::ReplyMessage || answer.arguments().isEmpty()) return nullptr;
    const auto held = answer.arguments().constFirst().value<QDBusUnixFileDescriptor>();
    if (!held.isValid()) return nullptr;
    FileDescriptor descriptor(fcntl(held.fileDescriptor(), F_DUPFD_CLOEXEC, 0));
    if (!descriptor.isOpen()) return nullptr;
    return std::make_unique<LogindAssertion>(std::move(descriptor));
}

}  // namespace orvo
