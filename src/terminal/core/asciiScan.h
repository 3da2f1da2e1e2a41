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

#ifdef __SSE2__
/// A bit for each of 16 bytes that are not printable ASCII.
inline unsigned otherThanPrintable(const char* bytes) {
    const __m128i values = _mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes));
    // The comparison is signed, so bytes of 0x80 and above are "controls" too.
    const __m128i printable = _mm_andnot_si128(_mm_cmpeq_epi8(values, _mm_set1_epi8(0x7F)),
                                               _mm_cmpgt_epi8(values, _mm_set1_epi8(0x1F)));
    return static_cast<unsigned>(_mm_movemask_epi8(printable)) ^ 0xFFFFu;
}
#endif

/// The length of the run of printable ASCII at the start of the bytes.
inline std::size_t printableRun(const char* position, const char* end) {
    const char* const start = position;
#ifdef __SSE2__
    for (; end - position >= 16; position += 16) {
        const unsigned others = otherThanPrintable(position);
        if (others != 0) return static_cast<std::size_t>(position - start + std::countr_zero(others));
    }
#endif
    while (position < end && isPrintableAscii(*position)) {
        ++position;
    }
    return static_cast<std::size_t>(position - start);
}

/// The length of the run among the first 16 bytes, of which there must be as many: without a branch, for runs
/// whose length nothing foretells.
inline int printableAmong16(const char* bytes) {
#ifdef __SSE2__
    return std::countr_zero(otherThanPrintable(bytes) | 0x1'0000u);
#else
    return static_cast<int>(printableRun(bytes, bytes + 16));
#endif
}

}  // namespace orvo
