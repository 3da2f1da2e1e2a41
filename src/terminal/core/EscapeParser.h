#pragma once

#include "terminal/core/ControlSequence.h"
#include "terminal/core/Utf8Decoder.h"
#include "terminal/core/asciiScan.h"

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace orvo {

/// The byte machine: finds text, control characters and sequences in what a program writes, and hands each to
/// a sink, which gives them meaning. The state survives between calls, so a sequence may come in pieces.
///
/// A sink has printAscii(std::string_view text, const char* end), which may read on to `end`,
/// print(char32_t), control(char), escape(char32_t), intermediateEscape(std::string_view intermediates, char
/// final), controlSequence(const ControlSequence&) and operatingSystemCommand(std::string_view text,
/// std::string_view terminator); and, to take a run of text at once, const char* printText(const char*
/// position, const char* end), which returns where it has stopped: at once, when it can do nothing with the
/// text.
class EscapeParser {
public:
    /// A longer control sequence is abandoned.
    static constexpr std::size_t longestSequence = 512;
    static constexpr int greatestParameter = 1'000'000;
    /// A longer operating-system command is dropped. Other strings are read past and never stored.
    static constexpr std::size_t longestString = std::size_t{1} << 20;

    template <class Sink>
    void feed(std::string_view bytes, Utf8Decoder& decoder, Sink& sink) {
        const auto emit = [this, &sink](char32_t scalar) {
            step(scalar, sink);
        };
        const char* position = bytes.data();
        const char* const end = position + bytes.size();
        if (decoder.pending()) position = decoder.resume(position, end, emit);
        while (position < end) {
            if (m_state == State::Ground) {
                position = ground(position, end, decoder, sink);
            } else if (m_state == State::String) {
                position = readString(position, end, sink);
            } else if (Utf8Decoder::isAscii(*position)) {
                step(static_cast<unsigned char>(*position++), sink);
            } else {
                position = decoder.decode(position, end, emit);
            }
        }
    }

    /// Takes one scalar in any state; `feed` has shorter ways for the common ones.
    template <class Sink>
    void step(char32_t scalar, Sink& sink);

private:
    enum class State : std::uint8_t {
        Ground,
        Escape,
        EscapeIntermediate,
        ControlSequence,
        String,
        StringEscape
    };
    enum class Storing : std::uint8_t { No, Yes };

    static constexpr char escape = 27;
    static constexpr char bell = 7;
    static constexpr char cancel = 24;
    static constexpr char substitute = 26;
    static constexpr std::size_t keptStringCapacity = 4'096;
    static constexpr std::size_t quickParameters = 32;

    static constexpr bool isControl(char32_t scalar) { return scalar < 0x20 || scalar == 0x7F; }
    static constexpr bool isFinal(char32_t scalar) { return scalar >= 0x40 && scalar <= 0x7E; }
    static constexpr bool isIntermediate(char32_t scalar) { return scalar >= 0x20 && scalar <= 0x2F; }
    /// Ends a sequence or a string of any kind without effect.
    static constexpr bool isCancelling(char32_t scalar) {
        return scalar == static_cast<char32_t>(cancel) || scalar == static_cast<char32_t>(substitute);
    }

    template <class Sink>
    const char* ground(const char* position, const char* end, Utf8Decoder& decoder, Sink& sink);
    /// Dispatches the well-formed sequence behind "ESC [" when it is all there, without collecting it.
    /// Returns where to go on, or null when the sequence must be collected.
    template <class Sink>
    const char* quickSequence(const char* position, const char* end, Sink& sink);
    template <class Sink>
    void stepEscape(char32_t scalar, Sink& sink);
    template <class Sink>
    void stepIntermediate(char32_t scalar, Sink& sink);
    template <class Sink>
    void stepSequence(char32_t scalar, Sink& sink);
    template <class Sink>
    void stepString(char32_t scalar, Sink& sink);
    template <class Sink>
    void endString(std::string_view terminator, Sink& sink);
    template <class Sink>
    const char* readString(const char* position, const char* end, Sink& sink);

    void beginString(Storing storing);
    void store(std::string_view bytes);
    void forgetString();
    /// Where the next byte is that means something inside of a string.
    static const char* stringStop(const char* position, const char* end);
    ControlSequence collectedSequence(char final);

    State m_state = State::Ground;
    std::size_t m_count = 0;
    // One byte a scalar: beyond ASCII only the fact matters that it is no digit, so 0xFF stands for all.
    std::array<char, longestSequence> m_collected;
    std::array<int, quickParameters> m_quick;
    std::vector<int> m_parameters;
    Storing m_storing = Storing::No;
    std::string m_string;
};

template <class Sink>
void EscapeParser::step(char32_t scalar, Sink& sink) {
    switch (m_state) {
        case State::Ground:
            if (scalar == static_cast<char32_t>(escape)) {
                m_state = State::Escape;
            } else if (isControl(scalar)) {
                sink.control(static_cast<char>(scalar));
            } else {
                sink.print(scalar);
            }
            break;
        case State::Escape:
            stepEscape(scalar, sink);
            break;
        case State::EscapeIntermediate:
            stepIntermediate(scalar, sink);
            break;
        case State::ControlSequence:
            stepSequence(scalar, sink);
            break;
        case State::String:
            stepString(scalar, sink);
            break;
        case State::StringEscape:
            if (scalar == U'\\') {
                endString("\x1B\\", sink);
            } else if (isCancelling(scalar)) {
                forgetString();
            } else {
                m_state = State::String;
            }
            break;
    }
}

template <class Sink>
void EscapeParser::stepEscape(char32_t scalar, Sink& sink) {
    switch (scalar) {
        case U'[':
            m_count = 0;
            m_state = State::ControlSequence;
            break;
        case U']':
            beginString(Storing::Yes);
            break;
        case U'P':
        case U'X':
        case U'^':
        case U'_':
            beginString(Storing::No);
            break;
        case static_cast<char32_t>(escape):
            break;
        default:
            if (isIntermediate(scalar)) {
                m_collected[0] = static_cast<char>(scalar);
                m_count = 1;
                m_state = State::EscapeIntermediate;
            } else {
                m_state = State::Ground;
                if (!isCancelling(scalar)) sink.escape(scalar);
            }
    }
}

template <class Sink>
void EscapeParser::stepIntermediate(char32_t scalar, Sink& sink) {
    if (isIntermediate(scalar)) {
        // More than one are told from one, and not from each other.
        m_collected[1] = static_cast<char>(scalar);
        m_count = 2;
        return;
    }
    m_state = scalar == static_cast<char32_t>(escape) ? State::Escape : State::Ground;
    if (scalar >= 0x30 && scalar <= 0x7E)
        sink.intermediateEscape({m_collected.data(), m_count}, static_cast<char>(scalar));
}

template <class Sink>
void EscapeParser::stepSequence(char32_t scalar, Sink& sink) {
    if (isFinal(scalar)) {
        m_state = State::Ground;
        sink.controlSequence(collectedSequence(static_cast<char>(scalar)));
    } else if (scalar == static_cast<char32_t>(escape)) {
        m_state = State::Escape;
    } else if (m_count < longestSequence && !isCancelling(scalar)) {
        m_collected[m_count++] = scalar < 0x80 ? static_cast<char>(scalar) : '\xFF';
    } else {
        m_state = State::Ground;
    }
}

template <class Sink>
void EscapeParser::stepString(char32_t scalar, Sink& sink) {
    if (scalar == static_cast<char32_t>(escape)) {
        m_state = State::StringEscape;
    } else if (scalar == static_cast<char32_t>(bell)) {
        endString("\a", sink);
    } else if (isCancelling(scalar)) {
        forgetString();
    } else if (m_storing == Storing::Yes) {
        std::string utf8;
        appendUtf8(utf8, scalar);
        store(utf8);
    }
}

template <class Sink>
const char* EscapeParser::readString(const char* position, const char* end, Sink& sink) {
    const char* const stop = stringStop(position, end);
    if (m_storing == Storing::Yes) store({position, static_cast<std::size_t>(stop - position)});
    if (stop == end) return end;
    stepString(static_cast<unsigned char>(*stop), sink);
    return stop + 1;
}

template <class Sink>
void EscapeParser::endString(std::string_view terminator, Sink& sink) {
    if (m_storing == Storing::Yes) sink.operatingSystemCommand(m_string, terminator);
    forgetString();
}

template <class Sink>
const char* EscapeParser::ground(const char* position, const char* end, Utf8Decoder& decoder, Sink& sink) {
    while (position < end) {
        const char byte = *position;
        if (isPrintableAscii(byte)) {
            const std::size_t run = printableRun(position, end);
            sink.printAscii({position, run}, end);
            position += run;
        } else if (!Utf8Decoder::isAscii(byte)) {
            const char* const printed = sink.printText(position, end);
            position = printed != position
                           ? printed
                           : decoder.decode(position, end, [&sink](char32_t scalar) { sink.print(scalar); });
        } else if (byte != escape) {
            sink.control(byte);
            ++position;
        } else if (const char* next = quickSequence(position + 1, end, sink)) {
            position = next;
        } else {
            m_state = State::Escape;
            return position + 1;
        }
    }
    return position;
}

template <class Sink>
const char* EscapeParser::quickSequence(const char* position, const char* end, Sink& sink) {
    if (end - position < 2 || *position != '[') return nullptr;
    ++position;
    ControlSequence sequence;
    if (*position == '?') sequence.marker = *position++;
    // Six digits cannot pass the greatest parameter, and a field with its terminator needs no look at the
    // end.
    constexpr int quickDigits = 6;
    for (std::size_t count = 0; count < quickParameters && end - position > quickDigits;) {
        unsigned value = 0;
#pragma GCC unroll 6
        for (int digits = 0; digits < quickDigits; ++digits) {
            const unsigned digit = static_cast<unsigned char>(*position) - unsigned{'0'};
            if (digit > 9) break;
            value = value * 10 + digit;
            ++position;
        }
        const char byte = *position++;
        m_quick[count++] = static_cast<int>(value);
        if (byte == ';') continue;
        if (!isFinal(static_cast<unsigned char>(byte))) break;
        sequence.final = byte;
        sequence.parameters = std::span(m_quick.data(), count);
        sink.controlSequence(sequence);
        return position;
    }
    return nullptr;
}

}  // namespace orvo
