#pragma once

#include <memory>

namespace orvo {

class Microphone;
class Preferences;
class SpeechRecognition;
class SpeechSynthesizer;

/// Everything that the companion hears and speaks with. Making it costs nothing: each part loads what it
/// needs, on a thread of its own, when it is used first. Main thread only.
class VoiceServices {
public:
    /// The preferences outlive this; null for none.
    explicit VoiceServices(const Preferences* preferences);
    /// The microphone is off and the voice silent after this.
    ~VoiceServices();

    Microphone& microphone();
    SpeechRecognition& recognition();
    SpeechSynthesizer& synthesizer();

private:
    struct Parts;

    const std::unique_ptr<Parts> m_parts;
};

}  // namespace orvo
