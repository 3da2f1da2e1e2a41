#include "terminal/core/EscapeParser.h"

#include <algorithm>

namespace orvo {
namespace {

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
