#include "platform/voice/SpeechSound.h"

#include <speex/speex_resampler.h>

#include <cmath>
#include <cstring>

namespace orvo {
namespace {

// Of ten; the next ones cost more and change nothing that a recogniser hears.
constexpr int quality = 5;

}  // namespace

SpeechSound::SpeechSound(AudioFormat format) : m_format(format) {
    const auto rate = static_cast<spx_uint32_t>(std::lround(format.sampleRate));
    if (rate != sampleRate) m_resampler.reset(speex_resampler_init(1, rate, sampleRate, quality, nullptr));
}

SpeechSound::~SpeechSound() = default;

void SpeechSound::Destroy::operator()(SpeexResamplerState_* state) const {
    speex_resampler_destroy(state);
}

QByteArray SpeechSound::toOneChannel(const QByteArray& samples) const {
    const auto channels = static_cast<size_t>(m_format.channels);
    if (channels == 1) return samples;
    const size_t frames = static_cast<size_t>(samples.size()) / (channels * sizeof(qint16));
    QByteArray mixed(static_cast<qsizetype>(frames * sizeof(qint16)), Qt::Uninitialized);
    for (size_t frame = 0; frame < frames; ++frame) {
        int sum = 0;
        for (size_t channel = 0; channel < channels; ++channel) {
            qint16 sample = 0;
            std::memcpy(&sample, samples.constData() + (frame * channels + channel) * sizeof sample,
                        sizeof sample);
            sum += sample;
        }
        const auto average = static_cast<qint16>(sum / m_format.channels);
        std::memcpy(mixed.data() + frame * sizeof average, &average, sizeof average);
    }
    return mixed;
}

QByteArray SpeechSound::convert(const QByteArray& samples) {
    QByteArray mixed = toOneChannel(samples);
    if (!m_resampler) return mixed;
    auto taken = static_cast<spx_uint32_t>(static_cast<size_t>(mixed.size()) / sizeof(spx_int16_t));
    // One more than the ratio says, for what an earlier piece left over.
    auto given = static_cast<spx_uint32_t>(std::ceil(taken * sampleRate / m_format.sampleRate)) + 1;
    QByteArray converted(qsizetype{given} * qsizetype{sizeof(spx_int16_t)}, Qt::Uninitialized);
    speex_resampler_process_int(m_resampler.get(), 0, reinterpret_cast<const spx_int16_t*>(mixed.constData()),
                                &taken, reinterpret_cast<spx_int16_t*>(converted.data()), &given);
    converted.truncate(qsizetype{given} * qsizetype{sizeof(spx_int16_t)});
    return converted;
}

}  // namespace orvo
