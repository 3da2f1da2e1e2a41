#include "platform/voice/SpeechSound.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <numbers>
#include <vector>

namespace orvo::test {
namespace {

constexpr double tone = 440;

/// One second of the tone on the first channel, in pieces as a microphone brings them, converted.
std::vector<qint16> converted(AudioFormat format) {
    SpeechSound sound(format);
    QByteArray result;
    QByteArray piece;
    int framesInPiece = 0;
    for (int frame = 0; frame < static_cast<int>(format.sampleRate); ++frame) {
        for (int channel = 0; channel < format.channels; ++channel) {
            const double value = std::sin(2 * std::numbers::pi * tone * frame / format.sampleRate);
            const auto sample = static_cast<qint16>(channel == 0 ? std::lround(value * 32'000) : 0);
            piece.append(reinterpret_cast<const char*>(&sample), sizeof sample);
        }
        if (++framesInPiece < 1024) continue;
        result += sound.convert(piece);
        piece.clear();
        framesInPiece = 0;
    }
    result += sound.convert(piece);
    std::vector<qint16> samples(static_cast<size_t>(result.size()) / sizeof(qint16));
    std::memcpy(samples.data(), result.constData(), samples.size() * sizeof(qint16));
    return samples;
}

TEST(SpeechSoundTest, KeepsPitchLengthAndLoudnessFromEveryFormat) {
    for (const AudioFormat format :
         {AudioFormat{16000, 1}, {8000, 1}, {44100, 1}, {44100, 2}, {48000, 2}, {96000, 6}, {22050, 1}}) {
        const std::vector<qint16> samples = converted(format);
        EXPECT_NEAR(static_cast<double>(samples.size()), 16000, 200) << format.sampleRate;
        int rises = 0;
        int peak = 0;
        double power = 0;
        bool isBelow = false;
        const double loudness = 32'000.0 / format.channels;
        for (const qint16 sample : samples) {
            // The filter rings a little around silence; that is no wave of the tone.
            if (sample < -loudness / 8) isBelow = true;
            if (isBelow && sample > loudness / 8) {
                isBelow = false;
                ++rises;
            }
            peak = std::max(peak, std::abs(int{sample}));
            power += double(sample) * sample;
        }
        EXPECT_NEAR(rises, tone, 5) << "the filter delays the end: " << format.sampleRate;
        EXPECT_NEAR(peak, loudness, loudness * 0.03) << format.sampleRate;
        // A click at the border of two pieces would raise it.
        EXPECT_NEAR(std::sqrt(power / static_cast<double>(samples.size())), loudness / std::numbers::sqrt2,
                    loudness * 0.02)
            << format.sampleRate;
    }
}

}  // namespace
}  // namespace orvo::test
