#include "terminal/core/EscapeParser.h"

#include <algorithm>

namespace orvo {
namespace {

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

const char* EscapeParser::stringStop(const char* position, const char* end) {
    return std::find_if(position, end, [](char byte) {
        return byte == escape || byte == bell || byte == cancel || byte == substitute;
    });
}

void EscapeParser::beginString(Storing storing) {
    m_storing = storing;
    m_state = State::String;
}

void EscapeParser::store(std::string_view bytes) {
    if (bytes.size() > longestString - m_string.size()) {
        // Its end is still looked for.
        forgetString();
        m_state = State::String;
    } else {
        m_string.append(bytes);
    }
}

void EscapeParser::forgetString() {
    m_state = State::Ground;
    m_storing = Storing::No;
    m_string.clear();
    if (m_string.capacity() > keptStringCapacity) m_string.shrink_to_fit();
}

ControlSequence EscapeParser::collectedSequence(char final) {
    const std::string_view text(m_collected.data(), m_count);
    ControlSequence sequence;
    sequence.final = final;
    if (text.find_first_of("<=>?") == 0) sequence.marker = text.front();
    const auto digitsEnd = std::find_if_not(text.rbegin(), text.rend(), [](char byte) {
                               return isIntermediate(static_cast<unsigned char>(byte));
                           }).base();
    sequence.intermediates = std::string_view(digitsEnd, text.end());

    m_parameters.clear();
    std::string_view rest = withoutMarkers(std::string_view(text.begin(), digitsEnd));
    if (rest.find(':') != std::string_view::npos) sequence.colonFields = rest;
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
