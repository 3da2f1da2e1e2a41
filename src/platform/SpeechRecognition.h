#pragma once

#include "platform/Microphone.h"

#include <QString>

#include <functional>
#include <memory>
#include <optional>

namespace orvo {

/// What a recogniser has made of the sound so far.
struct Transcription {
    QString text;
    bool isFinal = false;
};

/// One stretch of sound being turned into text. Destroying it cancels.
class RecognitionTask {
public:
    virtual ~RecognitionTask() = default;

    /// More sound, in the format that the task was started with. Any thread; only queues.
    virtual void append(const QByteArray& samples) = 0;
    /// No more sound comes.
    virtual void endAudio() = 0;
    /// Nothing is reported from here on, but for what is on its way already.
    virtual void cancel() = 0;
};

/// Turns speech of one language into text.
class Recognizer {
public:
    enum class Where { OnDeviceOnly, Anywhere };
    /// Each has a transcription, an error, or both. Partial results are reported as they grow.
    using Handler = std::function<void(std::optional<Transcription> result, std::optional<Error> error)>;

    virtual ~Recognizer() = default;

    virtual bool isAvailable() const = 0;
    virtual bool supportsOnDeviceRecognition() const = 0;
    /// `handler` is called later, on any thread. The task may be shared with the audio thread.
    virtual std::shared_ptr<RecognitionTask> start(AudioFormat format, Where where, Handler handler) = 0;
};

/// The recognisers of this computer. Main thread only.
class SpeechRecognition {
public:
    virtual ~SpeechRecognition() = default;

    /// Asks the system, and perhaps the person. `answer` comes later, on any thread.
    virtual void requestAuthorization(Microphone::Answer answer) = 0;
    /// `locale` as "language_REGION". Null when that language has none.
    virtual std::unique_ptr<Recognizer> recognizer(const QString& locale) = 0;
};

}  // namespace orvo
