#include "platform/voice/VoiceParts.h"

#include "platform/voice/AudioInput.h"
#include "platform/voice/DesktopSpeechRecognition.h"
#include "platform/voice/SpeechDispatcherSynthesizer.h"

namespace {

class DesktopVoiceParts final : public orvo::VoiceParts {
public:
    explicit DesktopVoiceParts(const orvo::Preferences* preferences) : m_recognition(preferences) {}

    orvo::Microphone& microphone() override { return m_microphone; }
    orvo::SpeechRecognition& recognition() override { return m_recognition; }
    orvo::SpeechSynthesizer& synthesizer() override { return m_synthesizer; }

private:
    orvo::DesktopSpeechRecognition m_recognition;
    orvo::AudioInput m_microphone;
    orvo::SpeechDispatcherSynthesizer m_synthesizer;
};

}  // namespace

extern "C" Q_DECL_EXPORT orvo::VoiceParts* orvoMakeVoiceParts(const orvo::Preferences* preferences) {
    return new DesktopVoiceParts(preferences);
}
