#include "platform/voice/DesktopSpeechRecognition.h"

#include "platform/Preferences.h"
#include "platform/voice/CommandRecognizer.h"

#include <QCoreApplication>

namespace orvo {

void DesktopSpeechRecognition::requestAuthorization(Microphone::Answer answer) {
    QMetaObject::invokeMethod(qApp, [answer = std::move(answer)] { answer(true); }, Qt::QueuedConnection);
}

std::unique_ptr<Recognizer> DesktopSpeechRecognition::recognizer(const QString& locale) {
    const auto stored = m_preferences ? m_preferences->value(preference::recognizerCommand) : std::nullopt;
    const QString command = stored.value_or(QString()).trimmed();
    if (!command.isEmpty()) return std::make_unique<CommandRecognizer>(command, locale);
    return m_builtIn.recognizer(locale);
}

}  // namespace orvo
