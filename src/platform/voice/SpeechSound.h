#pragma once

#include "platform/Microphone.h"

#include <memory>

struct SpeexResamplerState_;

namespace orvo {

/// Turns sound of any format into what recognisers take: 16,000 signed 16-bit samples a second, one channel.
/// Keeps what it needs from one piece to the next. One thread at a time.
class SpeechSound {
public:
    static constexpr int sampleRate = 16000;

    explicit SpeechSound(AudioFormat format);
    ~SpeechSound();

    QByteArray convert(const QByteArray& samples);

private:
    QByteArray toOneChannel(const QByteArray& samples) const;

    struct Destroy {
        void operator()(SpeexResamplerState_* state) const;
    };

    const AudioFormat m_format;
    /// Null when the rate is right already.
    std::unique_ptr<SpeexResamplerState_, Destroy> m_resampler;
};

}  // namespace orvo
