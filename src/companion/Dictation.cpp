#include "companion/Dictation.h"

#include "platform/observe.h"

#include <QCoreApplication>
#include <QPointer>

#include <tuple>

namespace orvo {
namespace {

using namespace std::chrono_literals;

constexpr auto longestAttempt = 60s;

}  // namespace

Dictation::Dictation(Clock& clock, Microphone& microphone, SpeechRecognition& recognition, QString locale,
                     QObject* parent)
    : QObject(parent),
      m_clock(clock),
      m_microphone(microphone),
      m_recognition(recognition),
      m_locale(std::move(locale)) {}

Dictation::~Dictation() {
    // The audio thread must not reach a task whose handler is gone.
    if (m_microphoneOn) m_microphone.stop();
    if (m_tapInstalled) m_microphone.removeTap();
    if (m_task) m_task->cancel();
}

template <class... Values>
std::function<void(Values...)> Dictation::inThisAttempt(void (Dictation::*step)(Values...)) {
    return [owner = QPointer(this), attempt = m_attempt, step](Values... values) {
        // The pointer is looked at on the main thread only, where the owner lives and dies.
        QMetaObject::invokeMethod(
            QCoreApplication::instance(),
            [owner, attempt, step, values = std::tuple(std::move(values)...)]() mutable {
                if (!owner || owner->m_attempt != attempt) return;
                std::apply([&](auto&... each) { (owner.data()->*step)(std::move(each)...); }, values);
            },
            Qt::QueuedConnection);
    };
}

void Dictation::start() {
    if (isBusy()) return;
    m_attempt = QUuid::createUuid();
    assume(true, false);
    Q_EMIT said(tr("Waiting for microphone permission…"));
    m_microphone.requestAccess(inThisAttempt(&Dictation::microphoneAnswered));
}

void Dictation::microphoneAnswered(bool granted) {
    if (!granted) {
        return refuse(
            tr("Microphone access is off. You can enable Orvo AI in System Settings → Privacy & "
               "Security → Microphone."));
    }
    Q_EMIT said(tr("Waiting for speech recognition permission…"));
    m_recognition.requestAuthorization(inThisAttempt(&Dictation::recognitionAnswered));
}

void Dictation::recognitionAnswered(bool granted) {
    if (!granted) {
        return refuse(
            tr("Speech recognition is off. Enable it for Orvo AI in System Settings → Privacy & "
               "Security → Speech Recognition."));
    }
    beginRecognition();
}

void Dictation::beginRecognition() {
    std::unique_ptr<Recognizer> recognizer = m_recognition.recognizer(m_locale);
    if (!recognizer || !recognizer->isAvailable()) {
        return refuse(
            tr("Speech recognition is unavailable for this language or connection. You can still "
               "type your draft."));
    }
    m_recognizer = std::move(recognizer);
    Q_EMIT beginning();
    const AudioFormat format = m_microphone.inputFormat();
    if (!format.isUsable()) return end(tr("No microphone input is available."));
    const auto where = m_recognizer->supportsOnDeviceRecognition() ? Recognizer::Where::OnDeviceOnly
                                                                   : Recognizer::Where::Anywhere;
    m_task = m_recognizer->start(format, where, inThisAttempt(&Dictation::received));
    m_microphone.installTap([task = m_task](const QByteArray& samples) { task->append(samples); });
    m_tapInstalled = true;
    m_microphoneOn = true;
    m_microphone.start(inThisAttempt(&Dictation::microphoneStarted),
                       inThisAttempt(&Dictation::microphoneLost));
}

void Dictation::microphoneStarted(Result<void> started) {
    if (!started) return end(tr("Could not start the microphone: ") + started.error().message);
    assume(false, true);
    Q_EMIT said(tr("Listening… tap the microphone to stop."));
    m_clock.after(longestAttempt, this, [this, attempt = m_attempt] {
        if (m_attempt == attempt) end(tr("Dictation paused after one minute. Your draft is ready."));
    });
}

void Dictation::microphoneLost() {
    breakOff();
}

void Dictation::received(const std::optional<Transcription>& result, const std::optional<Error>& error) {
    if (result) Q_EMIT heard(result->text);
    if (error) {
        breakOff();
    } else if (result && result->isFinal) {
        end(tr("Dictation finished. Review your draft before using it."));
    }
}

void Dictation::stop() {
    end(tr("Microphone off. Your draft is ready to review."));
}

void Dictation::refuse(const QString& message) {
    assume(false, false);
    Q_EMIT said(message);
}

void Dictation::breakOff() {
    end(tr("Dictation ended. Check your microphone, language, and connection; your draft is kept."));
}

void Dictation::end(const QString& message) {
    m_attempt = QUuid::createUuid();
    if (std::exchange(m_microphoneOn, false)) m_microphone.stop();
    if (std::exchange(m_tapInstalled, false)) m_microphone.removeTap();
    if (m_task) {
        m_task->endAudio();
        m_task->cancel();
    }
    m_task.reset();
    m_recognizer.reset();
    assume(false, false);
    Q_EMIT said(message);
}

void Dictation::assume(bool requesting, bool listening) {
    const bool requestingIsNew = assign(m_requesting, requesting);
    const bool listeningIsNew = assign(m_listening, listening);
    if (requestingIsNew) Q_EMIT requestingChanged();
    if (listeningIsNew) Q_EMIT listeningChanged();
}

}  // namespace orvo
