#pragma once

#include <bit>
#include <cstddef>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace orvo {

constexpr bool isPrintableAscii(char byte) {
    return byte >= 0x20 && byte < 0x7F;
}

/// The length of the run of printable ASCII at the start of the bytes.
inline std::size_t printableRun(const char* position, const char* end) {
    const char* const start = position;
#ifdef __SSE2__
    const __m128i lastControl = _mm_set1_epi8(0x1F);
    const __m128i deleteByte = _mm_set1_epi8(0x7F);
    for (; end - position >= 16; position += 16) {
        const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(position));
        // The comparison is signed, so bytes of 0x80 and above are "controls" too.
        const __m128i printable =
            _mm_andnot_si128(_mm_cmpeq_epi8(bytes, deleteByte), _mm_cmpgt_epi8(bytes, lastControl));
        const auto mask = static_cast<unsigned>(_mm_movemask_epi8(printable));
        if (mask != 0xFFFF) return static_cast<std::size_t>(position - start + std::countr_one(mask));
    }
#endif
    while (position < end && isPrintableAscii(*position)) {
        ++position;
    }
    return static_cast<std::size_t>(position - start);
}

}  // namespace orvo
