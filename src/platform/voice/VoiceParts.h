#pragma once

#include "platform/Microphone.h"
#include "platform/SpeechRecognition.h"
#include "platform/SpeechSynthesizer.h"

namespace orvo {

class Preferences;

/// What the module "orvo_voice" brings.
class VoiceParts {
public:
    virtual ~VoiceParts() = default;

    virtual Microphone& microphone() = 0;
    virtual SpeechRecognition& recognition() = 0;
    virtual SpeechSynthesizer& synthesizer() = 0;
};

/// The module's one function. The preferences outlive what it makes; null for none. The caller owns the
/// result.
using VoicePartsFunction = VoiceParts* (*)(const Preferences* preferences);
inline constexpr auto voicePartsSymbol = "orvoMakeVoiceParts";

}  // namespace orvo
