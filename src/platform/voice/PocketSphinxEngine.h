#pragma once

#include "platform/SpeechRecognition.h"

namespace orvo {

/// Recognises speech on this computer, with the model that is loaded at the first stretch of sound and kept
/// as long as this object lives. Loading and listening have a thread of their own.
class PocketSphinxEngine {
public:
    /// Silence after speech that ends a stretch of sound by itself.
    static constexpr int secondsOfSilence = 3;

    PocketSphinxEngine();
    ~PocketSphinxEngine();

    /// Null when no model of the language is installed. `locale` as "language_REGION". The recogniser may
    /// outlive the engine.
    std::unique_ptr<Recognizer> recognizer(const QString& locale);

private:
    class Listener;
    class Task;
    class Language;

    std::shared_ptr<Listener> m_listener;
};

}  // namespace orvo
