#pragma once

#include <array>
#include <string>
#include <string_view>

namespace orvo {

/// Appends one scalar's UTF-8 bytes.
void appendUtf8(std::string& text, char32_t scalar);

/// Cuts the characters with the White_Space property from both ends.
std::string_view trimWhiteSpace(std::string_view text);

/// Turns bytes that arrive in pieces into scalars. Malformed input gives one U+FFFD for each maximal subpart,
/// as the Unicode Standard recommends; a sequence cut by the end of a piece waits for the next one. A lead
/// byte waits for as many bytes as it announces, whether or not they can make it valid, and F5 to FF announce
/// four.
class Utf8Decoder {
public:
    static constexpr char32_t replacement = U'\uFFFD';

    static constexpr bool isContinuation(char byte) {
        return (static_cast<unsigned char>(byte) & 0xC0) == 0x80;
    }

    static constexpr bool isAscii(char byte) { return static_cast<unsigned char>(byte) < 0x80; }

    /// The bytes that a lead of 0x80 or above announces, itself included.
    static constexpr int lengthFor(char lead) {
        const auto byte = static_cast<unsigned char>(lead);
        return byte < 0xC0 ? 1 : byte < 0xE0 ? 2 : byte < 0xF0 ? 3 : 4;
    }

    /// The scalar of a sequence of `length` bytes, 0 when they are malformed.
    static constexpr char32_t wellFormed(const char* bytes, int length) {
        const auto at = [bytes](int index) {
            return char32_t{static_cast<unsigned char>(bytes[index])};
        };
        const auto six = [&at](int index) {
            return at(index) & 0x3F;
        };
        char32_t scalar = 0;
        switch (length) {
            case 2:
                if (!isContinuation(bytes[1])) return 0;
                scalar = ((at(0) & 0x1F) << 6) | six(1);
                return scalar >= 0x80 ? scalar : 0;
            case 3:
                if (!isContinuation(bytes[1]) || !isContinuation(bytes[2])) return 0;
                scalar = ((at(0) & 0x0F) << 12) | (six(1) << 6) | six(2);
                return scalar >= 0x800 && (scalar < 0xD800 || scalar > 0xDFFF) ? scalar : 0;
            case 4:
                if (at(0) > 0xF4) return 0;
                if (!isContinuation(bytes[1]) || !isContinuation(bytes[2]) || !isContinuation(bytes[3]))
                    return 0;
                scalar = ((at(0) & 0x07) << 18) | (six(1) << 12) | (six(2) << 6) | six(3);
                return scalar >= 0x10000 && scalar <= 0x10FFFF ? scalar : 0;
            default:
                return 0;
        }
    }

    bool pending() const { return m_count > 0; }

    /// Decodes one sequence that starts with a byte of 0x80 or above, calling `emit(char32_t)` for what it
    /// gives, or keeps it pending. Returns where to go on. Only while nothing is pending.
    template <class Emit>
    const char* decode(const char* position, const char* end, Emit&& emit) {
        const int needed = lengthFor(*position);
        if (end - position >= needed) {
            if (const char32_t scalar = wellFormed(position, needed)) {
                emit(scalar);
                return position + needed;
            }
        }
        int count = 1;
        while (count < needed && position + count < end && isContinuation(position[count])) {
            ++count;
        }
        if (count < needed && position + count == end) {
            keep(position, count);
            return end;
        }
        emitSubparts(position, count, emit);
        return position + count;
    }

    /// Goes on with the pending sequence. Returns where to go on.
    template <class Emit>
    const char* resume(const char* position, const char* end, Emit&& emit) {
        const int needed = lengthFor(m_bytes[0]);
        while (m_count < needed && position < end && isContinuation(*position)) {
            keep(position++, 1);
        }
        if (m_count == needed || position < end) finish(emit);
        return position;
    }

    /// Gives up waiting: what is pending is malformed, or complete after all.
    template <class Emit>
    void finish(Emit&& emit) {
        const int count = m_count;
        m_count = 0;
        emitSubparts(m_bytes.data(), count, emit);
    }

private:
    struct Subpart {
        char32_t scalar;
        int length;
    };

    template <class Emit>
    static void emitSubparts(const char* bytes, int count, Emit&& emit) {
        while (count > 0) {
            const Subpart part = maximalSubpart(bytes, count);
            emit(part.scalar);
            bytes += part.length;
            count -= part.length;
        }
    }

    /// The first scalar of `count` bytes, or the replacement for the longest beginning of one.
    static Subpart maximalSubpart(const char* bytes, int count);

    void keep(const char* bytes, int count) {
        for (int index = 0; index < count; ++index) {
            m_bytes[static_cast<std::size_t>(m_count++)] = bytes[index];
        }
    }

    std::array<char, 4> m_bytes = {};
    int m_count = 0;
};

}  // namespace orvo
