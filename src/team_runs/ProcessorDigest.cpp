#include "team_runs/ProcessorDigest.h"

#include <QtEndian>

#include <algorithm>
#include <cstring>

#ifdef __x86_64__
#include <cpuid.h>
#include <immintrin.h>
#endif

namespace orvo::RunFiles {
namespace {

/// The contents that are hashed together: the state of each, and where its next block is.
template <size_t streams>
struct Streams {
    std::array<uint32_t*, streams> states;
    std::array<const char*, streams> data;
};

#ifdef __x86_64__

constexpr size_t rounds = 64;
// As many as one vector of round words holds.
constexpr size_t groupRounds = 4;
constexpr size_t blockVectors = 4;

alignas(16) constexpr std::array<uint32_t, rounds> roundConstants = {
    0x428a2f98, 0x71374491, 0xb5c0fbcf, 0xe9b5dba5, 0x3956c25b, 0x59f111f1, 0x923f82a4, 0xab1c5ed5,
    0xd807aa98, 0x12835b01, 0x243185be, 0x550c7dc3, 0x72be5d74, 0x80deb1fe, 0x9bdc06a7, 0xc19bf174,
    0xe49b69c1, 0xefbe4786, 0x0fc19dc6, 0x240ca1cc, 0x2de92c6f, 0x4a7484aa, 0x5cb0a9dc, 0x76f988da,
    0x983e5152, 0xa831c66d, 0xb00327c8, 0xbf597fc7, 0xc6e00bf3, 0xd5a79147, 0x06ca6351, 0x14292967,
    0x27b70a85, 0x2e1b2138, 0x4d2c6dfc, 0x53380d13, 0x650a7354, 0x766a0abb, 0x81c2c92e, 0x92722c85,
    0xa2bfe8a1, 0xa81a664b, 0xc24b8b70, 0xc76c51a3, 0xd192e819, 0xd6990624, 0xf40e3585, 0x106aa070,
    0x19a4c116, 0x1e376c08, 0x2748774c, 0x34b0bcb5, 0x391c0cb3, 0x4ed8aa4a, 0x5b9cca4f, 0x682e6ff3,
    0x748f82ee, 0x78a5636f, 0x84c87814, 0x8cc70208, 0x90befffa, 0xa4506ceb, 0xbef9a3f7, 0xc67178f2};

/// Works `blocks` blocks of each content into its state.
template <size_t streams>
__attribute__((target("sha,sse4.1"))) void compress(Streams<streams> work, size_t blocks) {
    const auto load = [](const void* from) __attribute__((target("sha,sse4.1"))) {
        return _mm_loadu_si128(static_cast<const __m128i*>(from));
    };
    const auto store = [](void* to, __m128i value) __attribute__((target("sha,sse4.1"))) {
        _mm_storeu_si128(static_cast<__m128i*>(to), value);
    };
    const __m128i bigEndian = _mm_set_epi64x(0x0c0d0e0f08090a0b, 0x0405060700010203);
    // The instructions want the eight words a to h as a, b, e, f and c, d, g, h.
    __m128i abef[streams];
    __m128i cdgh[streams];
    for (size_t s = 0; s < streams; ++s) {
        const __m128i cdab = _mm_shuffle_epi32(load(work.states[s]), 0xB1);
        const __m128i efgh = _mm_shuffle_epi32(load(work.states[s] + 4), 0x1B);
        abef[s] = _mm_alignr_epi8(cdab, efgh, 8);
        cdgh[s] = _mm_blend_epi16(efgh, cdab, 0xF0);
    }
    for (; blocks > 0; --blocks) {
        __m128i abefBefore[streams];
        __m128i cdghBefore[streams];
        std::copy_n(abef, streams, abefBefore);
        std::copy_n(cdgh, streams, cdghBefore);
        // The sixteen latest words of each content's schedule.
        __m128i words[streams][blockVectors];
#pragma GCC unroll 16
        for (size_t group = 0; group < rounds / groupRounds; ++group) {
#pragma GCC unroll 2
            for (size_t s = 0; s < streams; ++s) {
                __m128i& current = words[s][group % blockVectors];
                if (group < blockVectors) {
                    current = _mm_shuffle_epi8(load(work.data[s] + group * sizeof(__m128i)), bigEndian);
                } else {
                    const __m128i twelveBack = words[s][(group + 1) % blockVectors];
                    const __m128i eightBack = words[s][(group + 2) % blockVectors];
                    const __m128i fourBack = words[s][(group + 3) % blockVectors];
                    current = _mm_add_epi32(_mm_sha256msg1_epu32(current, twelveBack),
                                            _mm_alignr_epi8(fourBack, eightBack, 4));
                    current = _mm_sha256msg2_epu32(current, fourBack);
                }
                const __m128i sum = _mm_add_epi32(current, load(&roundConstants[group * groupRounds]));
                cdgh[s] = _mm_sha256rnds2_epu32(cdgh[s], abef[s], sum);
                abef[s] = _mm_sha256rnds2_epu32(abef[s], cdgh[s], _mm_shuffle_epi32(sum, 0x0E));
            }
        }
        for (size_t s = 0; s < streams; ++s) {
            abef[s] = _mm_add_epi32(abef[s], abefBefore[s]);
            cdgh[s] = _mm_add_epi32(cdgh[s], cdghBefore[s]);
            work.data[s] += blockVectors * sizeof(__m128i);
        }
    }
    for (size_t s = 0; s < streams; ++s) {
        const __m128i feba = _mm_shuffle_epi32(abef[s], 0x1B);
        const __m128i dchg = _mm_shuffle_epi32(cdgh[s], 0xB1);
        store(work.states[s], _mm_blend_epi16(feba, dchg, 0xF0));
        store(work.states[s] + 4, _mm_alignr_epi8(dchg, feba, 8));
    }
}

bool hasInstructions() {
    unsigned a = 0;
    unsigned b = 0;
    unsigned c = 0;
    unsigned d = 0;
    if (__get_cpuid(1, &a, &b, &c, &d) == 0 || (c & bit_SSE4_1) == 0) return false;
    return __get_cpuid_count(7, 0, &a, &b, &c, &d) != 0 && (b & bit_SHA) != 0;
}

#else

template <size_t streams>
void compress(Streams<streams>, size_t) {}

bool hasInstructions() {
    return false;
}

#endif

}  // namespace

bool ProcessorDigest::isAvailable() {
    static const bool available = hasInstructions();
    return available;
}

void ProcessorDigest::add(const char* data, size_t size) {
    const size_t begun = m_size % blockSize;
    m_size += size;
    if (begun > 0) {
        const size_t taken = std::min(size, blockSize - begun);
        std::memcpy(m_block.data() + begun, data, taken);
        if (begun + taken < blockSize) return;
        compress<1>({{m_state.data()}, {m_block.data()}}, 1);
        data += taken;
        size -= taken;
    }
    compress<1>({{m_state.data()}, {data}}, size / blockSize);
    std::copy_n(data + size / blockSize * blockSize, size % blockSize, m_block.data());
}

QByteArray ProcessorDigest::take() {
    // One bit, zeros, and the number of bits, up to the end of a block.
    const uint64_t bits = qToBigEndian(m_size * 8);
    constexpr size_t lengthAt = blockSize - sizeof bits;
    std::array<char, 2 * blockSize> end{};
    end[0] = static_cast<char>(0x80);
    const size_t begun = m_size % blockSize;
    const size_t padding = (begun < lengthAt ? lengthAt : lengthAt + blockSize) - begun;
    std::memcpy(end.data() + padding, &bits, sizeof bits);
    add(end.data(), padding + sizeof bits);

    QByteArray digest(sizeof m_state, Qt::Uninitialized);
    qToBigEndian<uint32_t>(m_state.data(), static_cast<qsizetype>(m_state.size()), digest.data());
    m_state = start;
    m_size = 0;
    return digest;
}

void ProcessorDigest::addToBoth(ProcessorDigest& first, const char* firstData, size_t firstSize,
                                ProcessorDigest& second, const char* secondData, size_t secondSize) {
    size_t together = 0;
    if (first.m_size % blockSize == 0 && second.m_size % blockSize == 0) {
        const size_t blocks = std::min(firstSize, secondSize) / blockSize;
        compress<2>({{first.m_state.data(), second.m_state.data()}, {firstData, secondData}}, blocks);
        together = blocks * blockSize;
        first.m_size += together;
        second.m_size += together;
    }
    first.add(firstData + together, firstSize - together);
    second.add(secondData + together, secondSize - together);
}

}  // namespace orvo::RunFiles
