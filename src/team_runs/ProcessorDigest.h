#pragma once

#include "team_runs/Digest.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace orvo::RunFiles {

/// SHA-256 by the processor's instructions for it: nothing to load, and two contents at a time.
class ProcessorDigest final : public Digest {
public:
    /// Whether this processor has them; nothing else here may be used where it has not.
    static bool isAvailable();

    void add(const char* data, size_t size) override;
    QByteArray take() override;

    /// Adds to each of two digests what belongs to it. One round of the algorithm waits for the one before,
    /// so that a second content costs little more than the first one alone.
    static void addToBoth(ProcessorDigest& first, const char* firstData, size_t firstSize,
                          ProcessorDigest& second, const char* secondData, size_t secondSize);

private:
    static constexpr size_t blockSize = 64;
    static constexpr std::array<uint32_t, 8> start = {0x6a09e667, 0xbb67ae85, 0x3c6ef372, 0xa54ff53a,
                                                      0x510e527f, 0x9b05688c, 0x1f83d9ab, 0x5be0cd19};

    std::array<uint32_t, 8> m_state = start;
    std::array<char, blockSize> m_block{};
    /// Bytes so far; those of a last block that is not full are in m_block.
    uint64_t m_size = 0;
};

}  // namespace orvo::RunFiles
