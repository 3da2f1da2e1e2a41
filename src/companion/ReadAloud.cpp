#include "companion/ReadAloud.h"

#include "platform/observe.h"
#include "platform/textEnds.h"

#include <QCoreApplication>
#include <QPointer>

namespace orvo {

ReadAloud::ReadAloud(SpeechSynthesizer& synthesizer, QString locale, QObject* parent)
    : QObject(parent), m_synthesizer(synthesizer), m_locale(std::move(locale)) {}

ReadAloud::~ReadAloud() {
    if (m_speaking) m_synthesizer.stop();
}

void ReadAloud::speak(const QString& text) {
    stop();
    const Utterance utterance{.text = lastCharacters(text, longestText),
                              .language = QString(m_locale).replace(u'_', u'-')};
    setSpeaking(true);
    m_synthesizer.speak(utterance, [owner = QPointer(this), reading = m_reading](Result<void> result) {
        QMetaObject::invokeMethod(
            QCoreApplication::instance(),
            [owner, reading, result = std::move(result)] {
                if (owner) owner->finished(reading, result);
            },
            Qt::QueuedConnection);
    });
}

void ReadAloud::stop() {
    ++m_reading;
    m_synthesizer.stop();
    setSpeaking(false);
}

void ReadAloud::finished(quint64 reading, const Result<void>& result) {
    if (reading != m_reading) return;
    setSpeaking(false);
    if (!result) Q_EMIT failed(result.error().message);
}

void ReadAloud::setSpeaking(bool speaking) {
    if (assign(m_speaking, speaking)) Q_EMIT speakingChanged();
}

}  // namespace orvo
