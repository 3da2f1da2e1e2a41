#pragma once

#include "platform/SpeechRecognition.h"
#include "platform/voice/PocketSphinxEngine.h"

namespace orvo {

class Preferences;

/// The person's own recogniser where the preferences name one, else the built-in one for the languages that
/// have a model. Both are asked for without a question: here nobody but the person decides.
class DesktopSpeechRecognition final : public SpeechRecognition {
public:
    /// The preferences outlive this; null for none.
    explicit DesktopSpeechRecognition(const Preferences* preferences) : m_preferences(preferences) {}

    void requestAuthorization(Microphone::Answer answer) override;
    std::unique_ptr<Recognizer> recognizer(const QString& locale) override;

private:
    const Preferences* const m_preferences;
    PocketSphinxEngine m_builtIn;
};

}  // namespace orvo
