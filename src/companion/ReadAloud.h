#pragma once

#include "platform/SpeechSynthesizer.h"

#include <QObject>

namespace orvo {

/// Reads one text at a time aloud. Main thread only.
class ReadAloud : public QObject {
    Q_OBJECT

public:
    /// Of a longer text its last this many characters are read.
    static constexpr qsizetype longestText = 6000;

    /// The synthesizer outlives this. `locale` as "language_REGION".
    ReadAloud(SpeechSynthesizer& synthesizer, QString locale, QObject* parent = nullptr);
    ~ReadAloud() override;

    bool isSpeaking() const { return m_speaking; }

    /// Reads `text`, which is not blank, instead of whatever is being read.
    void speak(const QString& text);
    /// Silence at once.
    void stop();

Q_SIGNALS:
    void speakingChanged();
    /// Reading came to nothing; what the person should know.
    void failed(const QString& message);

private:
    void finished(quint64 reading, const Result<void>& result);
    void setSpeaking(bool speaking);

    SpeechSynthesizer& m_synthesizer;
    const QString m_locale;
    bool m_speaking = false;
    // Identifies the latest text, so that the end of an older one leaves it alone.
    quint64 m_reading = 0;
};

}  // namespace orvo
