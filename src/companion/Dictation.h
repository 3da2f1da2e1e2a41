#pragma once

#include "platform/Clock.h"
#include "platform/SpeechRecognition.h"

#include <QObject>
#include <QUuid>

namespace orvo {

/// Turns speech into text: asks for both permissions, listens for at most one minute, reports what is heard.
/// Main thread only. Every start and every stop begins a new attempt; whatever an older one still brings is
/// dropped.
class Dictation : public QObject {
    Q_OBJECT

public:
    /// All outlive the dictation. `locale` as "language_REGION".
    Dictation(Clock& clock, Microphone& microphone, SpeechRecognition& recognition, QString locale,
              QObject* parent = nullptr);
    ~Dictation() override;

    bool isListening() const { return m_listening; }
    /// Asked for, and not yet listening.
    bool isRequesting() const { return m_requesting; }
    bool isBusy() const { return m_listening || m_requesting; }

    void start();
    /// Ends whatever is going on at once. Always safe, and says that the microphone is off.
    void stop();

Q_SIGNALS:
    void listeningChanged();
    void requestingChanged();
    /// What the person should read now.
    void said(const QString& message);
    /// Recognition is about to begin; what is heard from now on comes with `heard`.
    void beginning();
    /// The whole transcription of this attempt so far.
    void heard(const QString& transcription);

private:
    /// Wraps a step of the current attempt, so that it may be called on any thread: it runs on the main one,
    /// and only when the attempt still is the current one.
    template <class... Values>
    std::function<void(Values...)> inThisAttempt(void (Dictation::*step)(Values...));
    void microphoneAnswered(bool granted);
    void recognitionAnswered(bool granted);
    void beginRecognition();
    void microphoneStarted(Result<void> started);
    void microphoneLost();
    void received(const std::optional<Transcription>& result, const std::optional<Error>& error);
    /// A request that came to nothing before anything was started.
    void refuse(const QString& message);
    /// Ends everything because something outside failed.
    void breakOff();
    /// Ends everything and says so in these words.
    void end(const QString& message);
    void assume(bool requesting, bool listening);

    Clock& m_clock;
    Microphone& m_microphone;
    SpeechRecognition& m_recognition;
    const QString m_locale;
    QUuid m_attempt = QUuid::createUuid();
    bool m_listening = false;
    bool m_requesting = false;
    bool m_microphoneOn = false;
    bool m_tapInstalled = false;
    std::unique_ptr<Recognizer> m_recognizer;
    std::shared_ptr<RecognitionTask> m_task;
};

}  // namespace orvo
