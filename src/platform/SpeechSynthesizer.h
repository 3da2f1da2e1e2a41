#pragma once

#include "platform/Result.h"

#include <QString>

#include <functional>

namespace orvo {

/// A text to read aloud at the system's own rate.
struct Utterance {
    QString text;
    /// As "language-REGION"; without such a voice the system's default one reads.
    QString language;
};

/// Reads texts aloud. Called on the main thread; nothing here waits for the speech service.
class SpeechSynthesizer {
public:
    using Finished = std::function<void(Result<void>)>;

    virtual ~SpeechSynthesizer() = default;

    /// `finished` comes later, on any thread: once the whole text was read, or with why it could not be.
    /// After `stop` it may still come.
    virtual void speak(const Utterance& utterance, Finished finished) = 0;
    /// Silence at once, also for what was asked for and has not begun.
    virtual void stop() = 0;
};

}  // namespace orvo
