#include "terminal/core/EscapeParser.h"

#include <algorithm>

#ifdef __SSE2__
#include <emmintrin.h>

#include <bit>
#endif

namespace orvo {
namespace {

constexpr bool isPrintable(char byte) {
    return byte >= 0x20 && byte != 0x7F && Utf8Decoder::isAscii(byte);
}

constexpr bool isIntermediate(char byte) {
    return byte >= 0x20 && byte <= 0x2F;
}

/// The value of one field: digits alone make a number.
int parameterOf(std::string_view field) {
    int value = 0;
    for (const char byte : field) {
        if (byte < '0' || byte > '9') return 0;
        value = std::min(value * 10 + (byte - '0'), EscapeParser::greatestParameter);
    }
    return value;
}

/// Cuts the marker characters from both ends.
std::string_view withoutMarkers(std::string_view text) {
    static constexpr std::string_view markers = "?>=!";
    const std::size_t first = text.find_first_not_of(markers);
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(markers) - first + 1);
}

}  // namespace

std::size_t printableRun(const char* position, const char* end) {
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
    while (position < end && isPrintable(*position)) {
        ++position;
    }
    return static_cast<std::size_t>(position - start);
}

const char* EscapeParser::skipString(const char* position, const char* end) {
    const char* const stop =
        std::find_if(position, end, [](char byte) { return byte == escape || byte == bell; });
    if (stop == end) return end;
    m_state = *stop == escape ? State::StringEscape : State::Ground;
    return stop + 1;
}

ControlSequence EscapeParser::collectedSequence(char final) {
    const std::string_view text(m_collected.data(), m_count);
    ControlSequence sequence;
    sequence.final = final;
    if (text.find_first_of("<=>?") == 0) sequence.marker = text.front();
    const auto digitsEnd = std::find_if_not(text.rbegin(), text.rend(), isIntermediate).base();
    sequence.intermediates = std::string_view(digitsEnd, text.end());

    m_parameters.clear();
    std::string_view rest = withoutMarkers(std::string_view(text.begin(), digitsEnd));
    for (;;) {
        const std::size_t length = std::min(rest.find(';'), rest.size());
        m_parameters.push_back(parameterOf(rest.substr(0, length)));
        if (length == rest.size()) break;
        rest.remove_prefix(length + 1);
    }
    sequence.parameters = m_parameters;
    return sequence;
}

}  // namespace orvo
