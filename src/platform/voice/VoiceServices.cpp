#include "platform/voice/VoiceServices.h"

#include "platform/voice/AudioInput.h"
#include "platform/voice/DesktopSpeechRecognition.h"
#include "platform/voice/SpeechDispatcherSynthesizer.h"

namespace orvo {

struct VoiceServices::Parts {
    explicit Parts(const Preferences* preferences) : recognition(preferences) {}

    DesktopSpeechRecognition recognition;
    AudioInput microphone;
    SpeechDispatcherSynthesizer synthesizer;
};

VoiceServices::VoiceServices(const Preferences* preferences)
    : m_parts(std::make_unique<Parts>(preferences)) {}

VoiceServices::~VoiceServices() = default;

Microphone& VoiceServices::microphone() {
    return m_parts->microphone;
}

SpeechRecognition& VoiceServices::recognition() {
    return m_parts->recognition;
}

SpeechSynthesizer& VoiceServices::synthesizer() {
    return m_parts->synthesizer;
}

}  // namespace orvo
