#include "platform/voice/VoiceServices.h"

#include "platform/loadModule.h"
#include "platform/voice/VoiceParts.h"

#include <QCoreApplication>

namespace orvo {
namespace {

/// The module's parts, from the first use on.
class Voice {
public:
    explicit Voice(const Preferences* preferences) : m_preferences(preferences) {}

    /// Null when the module cannot be loaded.
    VoiceParts* use() {
        if (std::exchange(m_used, true)) return m_parts.get();
        const auto make = reinterpret_cast<VoicePartsFunction>(loadModule("orvo_voice", voicePartsSymbol));
        if (make) m_parts.reset(make(m_preferences));
        return m_parts.get();
    }
    /// What has been used already; null for nothing.
    VoiceParts* used() const { return m_parts.get(); }

private:
    const Preferences* const m_preferences;
    bool m_used = false;
    std::unique_ptr<VoiceParts> m_parts;
};

Error moduleMissing() {
    return {QStringLiteral("Orvo"), 1,
            QCoreApplication::translate("VoiceServices", "A part of Orvo AI is missing: orvo_voice.so.")};
}

/// Answers come later, as those of the parts do.
void later(std::function<void()> answer) {
    QMetaObject::invokeMethod(QCoreApplication::instance(), std::move(answer), Qt::QueuedConnection);
}

class LoadedMicrophone final : public Microphone {
public:
    explicit LoadedMicrophone(Voice& voice) : m_voice(voice) {}

    void requestAccess(Answer answer) override {
        if (VoiceParts* const parts = m_voice.use())
            parts->microphone().requestAccess(std::move(answer));
        else
            // Nobody has refused it; there is no usable input.
            later([answer = std::move(answer)] { answer(true); });
    }
    AudioFormat inputFormat() const override {
        VoiceParts* const parts = m_voice.used();
        return parts ? parts->microphone().inputFormat() : AudioFormat();
    }
    void installTap(Tap tap) override {
        if (VoiceParts* const parts = m_voice.use()) parts->microphone().installTap(std::move(tap));
    }
    void removeTap() override {
        if (VoiceParts* const parts = m_voice.used()) parts->microphone().removeTap();
    }
    void start(Started started, Lost lost) override {
        if (VoiceParts* const parts = m_voice.use())
            parts->microphone().start(std::move(started), std::move(lost));
        else
            later([started = std::move(started)] { started(tl::unexpected(moduleMissing())); });
    }
    void stop() override {
        if (VoiceParts* const parts = m_voice.used()) parts->microphone().stop();
    }

private:
    Voice& m_voice;
};

class LoadedRecognition final : public SpeechRecognition {
public:
    explicit LoadedRecognition(Voice& voice) : m_voice(voice) {}

    void requestAuthorization(Microphone::Answer answer) override {
        if (VoiceParts* const parts = m_voice.use())
            parts->recognition().requestAuthorization(std::move(answer));
        else
            // There is no recogniser then.
            later([answer = std::move(answer)] { answer(true); });
    }
    std::unique_ptr<Recognizer> recognizer(const QString& locale) override {
        VoiceParts* const parts = m_voice.use();
        return parts ? parts->recognition().recognizer(locale) : nullptr;
    }

private:
    Voice& m_voice;
};

class LoadedSynthesizer final : public SpeechSynthesizer {
public:
    explicit LoadedSynthesizer(Voice& voice) : m_voice(voice) {}

    void speak(const Utterance& utterance, Finished finished) override {
        if (VoiceParts* const parts = m_voice.use())
            parts->synthesizer().speak(utterance, std::move(finished));
        else
            later([finished = std::move(finished)] { finished(tl::unexpected(moduleMissing())); });
    }
    void stop() override {
        if (VoiceParts* const parts = m_voice.used()) parts->synthesizer().stop();
    }

private:
    Voice& m_voice;
};

}  // namespace

struct VoiceServices::Parts {
    explicit Parts(const Preferences* preferences) : voice(preferences) {}

    Voice voice;
    LoadedMicrophone microphone{voice};
    LoadedRecognition recognition{voice};
    LoadedSynthesizer synthesizer{voice};
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
