#pragma once

#include <memory>

namespace orvo {

class Microphone;
class Preferences;
class SpeechRecognition;
class SpeechSynthesizer;

/// Everything that the companion hears and speaks with. Making it costs nothing: the libraries of the sound
/// server, the recogniser and the speech service are loaded when a part is used first, and each part gets
/// what it needs on a thread of its own. Main thread only.
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
