#include "bench/Payloads.h"

#include "terminal/core/Utf8Decoder.h"

#include <algorithm>
#include <array>
#include <random>
#include <string_view>

namespace orvo::bench {
namespace {

constexpr std::size_t payloadBytes = 2'000'000;

constexpr std::array<std::string_view, 16> words = {
    "error", "the",   "function", "build",  "src/main.cpp", "returned", "42",   "warning:",
    "while", "const", "target",   "linked", "0x7ffe12",     "done",     "path", "assistant",
};

/// Numbers without the standard distributions, whose results differ between libraries.
class Random {
public:
    explicit Random(std::uint32_t seed) : m_engine(seed) {}
    /// From `low` to `high`, both included.
    int between(int low, int high) {
        return low + static_cast<int>(m_engine() % static_cast<std::uint32_t>(high - low + 1));
    }
    template <class Container>
    const auto& pick(const Container& container) {
        return container[static_cast<std::size_t>(between(0, static_cast<int>(container.size()) - 1))];
    }

private:
    std::mt19937 m_engine;
};

class Writer {
public:
    Writer(int height, int width, std::uint32_t seed) : rows(height), columns(width), random(seed) {}

    const int rows;
    const int columns;
    Random random;
    std::string out;

    bool full() const { return out.size() >= payloadBytes; }
    void sequence(std::string_view parameters) { out.append("\x1B[").append(parameters); }
    void moveTo(int row, int column) { sequence(std::to_string(row) + ";" + std::to_string(column) + "H"); }
    void color(int ground, int number) {
        sequence(std::to_string(ground) + ";5;" + std::to_string(number) + "m");
    }
    /// Words of at most `length` characters in all.
    int text(int length) {
        int written = 0;
        for (;;) {
            const std::string_view word = random.pick(words);
            if (written + static_cast<int>(word.size()) + 1 > length) return written;
            out.append(word).append(" ");
            written += static_cast<int>(word.size()) + 1;
        }
    }
    char letter() { return static_cast<char>(random.between('!', '~')); }
};

void plainLog(Writer& writer) {
    for (int number = 0; !writer.full(); ++number) {
        writer.out += "[2026-01-02 03:04:" + std::to_string(10 + number % 50) + "] ";
        writer.text(writer.random.between(10, writer.columns - 25));
        writer.out += "\r\n";
    }
}

void wrappedText(Writer& writer) {
    while (!writer.full()) {
        writer.text(writer.random.between(3 * writer.columns, 12 * writer.columns));
        writer.out += "\r\n";
    }
}

void scrolling(Writer& writer) {
    while (!writer.full()) {
        writer.out.append("y123456", static_cast<std::size_t>(writer.random.between(0, 7))).append("\r\n");
    }
}

void regionScrolling(Writer& writer) {
    while (!writer.full()) {
        writer.sequence("2;" + std::to_string(writer.rows - 2) + "r");
        writer.moveTo(writer.rows - 2, 1);
        for (int line = 0; line < 40; ++line) {
            writer.out += "\r\n";
            writer.text(writer.random.between(5, writer.columns / 2));
        }
        writer.moveTo(2, 1);
        for (int line = 0; line < 20; ++line) {
            writer.out += "\x1BM\r";
            writer.text(writer.random.between(5, writer.columns / 2));
        }
        writer.moveTo(writer.rows / 2, 1);
        writer.sequence("3L");
        writer.text(20);
        writer.sequence("2M");
        writer.sequence("r");
    }
}

void denseCells(Writer& writer) {
    while (!writer.full()) {
        writer.sequence("H");
        for (int cell = 0; cell < writer.rows * writer.columns; ++cell) {
            writer.sequence("38;5;" + std::to_string(cell % 156 + 100) + ";48;5;" +
                            std::to_string(cell % 200 + 40) + (cell % 3 == 0 ? ";1m" : ";22m"));
            writer.out += writer.letter();
        }
    }
}

void trueColor(Writer& writer) {
    while (!writer.full()) {
        writer.sequence("H");
        for (int row = 0; row < writer.rows; ++row) {
            for (int column = 0; column < writer.columns; ++column) {
                const std::string red = std::to_string(column * 255 / writer.columns);
                const std::string green = std::to_string(row * 255 / writer.rows);
                writer.sequence("38;2;" + red + ";" + green + ";" +
                                std::to_string(writer.random.between(0, 255)) + "m");
                writer.sequence("48;2;" + green + ";" + red + ";90m");
                writer.out += "\u2580";
            }
            writer.sequence("0m\r\n");
        }
    }
}

void cursorMotion(Writer& writer) {
    while (!writer.full()) {
        writer.moveTo(writer.random.between(1, writer.rows), writer.random.between(1, writer.columns));
        writer.out += writer.letter();
        if (writer.random.between(0, 3) == 0) writer.sequence("3D");
        if (writer.random.between(0, 3) == 0) writer.sequence("A");
    }
}

/// A full-screen editor: coloured source, line numbers, a status line, scrolling by a region.
void editor(Writer& writer) {
    writer.sequence("?1049h");
    const auto sourceLine = [&writer](int number) {
        writer.color(38, 240);
        writer.out += std::to_string(number % 900 + 100) + " ";
        int column = 4;
        while (column < writer.columns * 2 / 3) {
            writer.color(38, writer.random.pick(std::array{75, 114, 180, 204, 252}));
            const int width = writer.text(12);
            if (width == 0) break;
            column += width;
        }
        writer.sequence("39m");
        writer.sequence("K");
    };
    for (int number = 0; !writer.full(); ++number) {
        writer.sequence("?25l");
        if (number % 8 == 0) {
            for (int row = 1; row < writer.rows; ++row) {
                writer.moveTo(row, 1);
                sourceLine(number + row);
            }
        } else {
            writer.sequence("1;" + std::to_string(writer.rows - 1) + "r");
            writer.moveTo(writer.rows - 1, 1);
            writer.out += "\n";
            writer.sequence("r");
            writer.moveTo(writer.rows - 1, 1);
            sourceLine(number);
        }
        writer.moveTo(writer.rows, 1);
        writer.sequence("7m");
        writer.out += " NORMAL  ";
        writer.text(writer.columns / 2);
        writer.sequence("K");
        writer.sequence("27m");
        writer.moveTo(writer.random.between(1, writer.rows - 1), writer.random.between(1, writer.columns));
        writer.sequence("?25h");
    }
    writer.sequence("?1049l");
}

/// A coding assistant that draws its lower part anew with every step: it erases line by line upwards.
void assistant(Writer& writer) {
    constexpr std::array<std::string_view, 6> spinner = {"\u00B7", "\u2722", "\u2733",
                                                         "\u2736", "\u273B", "\u273D"};
    const auto rule = [&writer](std::string_view left, std::string_view right) {
        writer.out += left;
        for (int column = 2; column < writer.columns - 1; ++column) {
            writer.out += "\u2500";
        }
        writer.out.append(right).append("\r\n");
    };
    for (int step = 0; !writer.full(); ++step) {
        writer.sequence("?2026h");
        for (int line = 0; step > 0 && line < 6; ++line) {
            writer.sequence("2K");
            writer.sequence("1A");
        }
        writer.sequence("G");
        if (step % 5 == 0) {
            writer.sequence("38;2;215;119;87m");
            writer.out += "\u25CF ";
            writer.sequence("39m");
            writer.text(writer.columns - 4);
            writer.out += "\r\n";
        }
        writer.sequence("38;2;215;119;87m");
        writer.out.append(spinner[static_cast<std::size_t>(step) % spinner.size()])
            .append(" Thinking\u2026 ");
        writer.sequence("38;2;153;153;153m");
        writer.out.append("(").append(std::to_string(step / 10)).append("s \u00B7 esc to interrupt)");
        writer.sequence("39m\r\n\r\n");
        writer.sequence("2m");
        rule("\u256D", "\u256E");
        writer.sequence("22m");
        writer.out += "\u2502 > ";
        writer.sequence("7m \x1B[27m");
        writer.text(writer.columns / 3);
        writer.sequence(std::to_string(writer.columns - 1) + "G\u2502\r\n");
        rule("\u2570", "\u256F");
        writer.out += "  ? for shortcuts\r\n";
        writer.sequence("?2026l");
    }
}

void scalars(Writer& writer, std::string_view separators, const std::vector<std::pair<int, int>>& ranges) {
    while (!writer.full()) {
        for (int count = writer.random.between(10, writer.columns); count > 0; --count) {
            const auto [first, last] = writer.random.pick(ranges);
            appendUtf8(writer.out, static_cast<char32_t>(writer.random.between(first, last)));
            if (writer.random.between(0, 9) == 0) writer.out += writer.random.pick(separators);
        }
        writer.out += "\r\n";
    }
}

void cjk(Writer& writer) {
    scalars(writer, " ,.a1", {{0x4E00, 0x9FA5}, {0x4E00, 0x9FA5}, {0x3041, 0x3093}, {0xAC00, 0xD7A3}});
}

void emoji(Writer& writer) {
    scalars(writer, "   abc",
            {{0x1F600, 0x1F64F}, {0x1F300, 0x1F3F0}, {0x1F400, 0x1F4FF}, {'a', 'z'}, {'a', 'z'}});
}

void accents(Writer& writer) {
    while (!writer.full()) {
        for (int column = 0; column < writer.columns - 10; ++column) {
            writer.out += writer.letter();
            if (writer.random.between(0, 7) == 0) {
                appendUtf8(writer.out, static_cast<char32_t>(writer.random.between(0xC0, 0x17F)));
            }
            if (writer.random.between(0, 15) == 0) {
                appendUtf8(writer.out, static_cast<char32_t>(writer.random.between(0x300, 0x36F)));
            }
        }
        writer.out += "\r\n";
    }
}

}  // namespace

std::vector<Payload> payloads(int rows, int columns) {
    constexpr std::array<std::pair<std::string_view, void (*)(Writer&)>, 12> kinds = {{
        {"plain log", plainLog},
        {"wrapped text", wrappedText},
        {"scrolling", scrolling},
        {"region scrolling", regionScrolling},
        {"dense cells", denseCells},
        {"true colour", trueColor},
        {"cursor motion", cursorMotion},
        {"editor redraw", editor},
        {"assistant redraw", assistant},
        {"CJK", cjk},
        {"emoji", emoji},
        {"accents and marks", accents},
    }};
    std::vector<Payload> made;
    for (const auto& [name, write] : kinds) {
        Writer writer(rows, columns, 20'260'101u + static_cast<std::uint32_t>(made.size()));
        write(writer);
        made.push_back({std::string(name), std::move(writer.out)});
    }
    return made;
}

}  // namespace orvo::bench
