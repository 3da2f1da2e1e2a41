#include "terminal/core/TerminalScreen.h"

#include "support/longer.h"
#include "support/sanitized.h"

#include <gtest/gtest.h>

#include <malloc.h>

#include <array>
#include <functional>
#include <memory>
#include <random>
#include <string>

namespace orvo::test {
namespace {

std::size_t allocated() {
    const auto info = mallinfo2();
    return info.uordblks + info.hblkhd;
}

/// MiB that a screen holds after it was filled.
double mebibytes(int rows, int columns, const std::function<void(TerminalScreen&)>& fill) {
    const std::size_t before = allocated();
    const auto screen = std::make_unique<TerminalScreen>(rows, columns);
    fill(*screen);
    screen->compact();
    screen->assertInvariants();
    const double used = static_cast<double>(allocated() - before) / (1 << 20);
    return used;
}

TEST(ScreenMemory, ASessionHoldsWhatItsTextNeeds) {
    if (isSanitized) GTEST_SKIP() << "a sanitizer's allocator does not tell";
    EXPECT_LE(mebibytes(50, 200, [](TerminalScreen&) {}), 0.15);
    EXPECT_LE(mebibytes(50, 200,
                        [](TerminalScreen& screen) {
                            std::string line;
                            for (int column = 0; column < 200; ++column)
                                line += "\x1B[38;5;" + std::to_string(column) + "m█";
                            for (int count = 0; count < 4500; ++count)
                                screen.feed(line + "\r\n");
                        }),
              6.6);
    // 40 of 200 columns are used.
    EXPECT_LE(mebibytes(50, 200,
                        [](TerminalScreen& screen) {
                            for (int count = 0; count < 4500; ++count)
                                screen.feed(std::string(40, 'x') + "\r\n");
                        }),
              2.0);
}

TEST(ScreenMemory, FloodsAreBounded) {
    if (isSanitized) GTEST_SKIP() << "a sanitizer's allocator does not tell";
    EXPECT_LE(mebibytes(24, 80,
                        [](TerminalScreen& screen) {
                            screen.feed("\x1B]2;");
                            for (int count = 0; count < 64; ++count)
                                screen.feed(std::string(1 << 16, 'x'));
                        }),
              1.0)
        << "a string without end";
    EXPECT_LE(mebibytes(24, 80,
                        [](TerminalScreen& screen) {
                            for (int count = 0; count < 20'000; ++count)
                                screen.feed("e\u0301\u0302\u0303\u0304");
                            for (int count = 0; count < 2'000; ++count)
                                screen.feed("x\x1B[1000000b");
                        }),
              4.0)
        << "marks and repetitions";
    EXPECT_LE(mebibytes(24, 80,
                        [](TerminalScreen& screen) {
                            for (int count = 0; count < 170'000; ++count)
                                screen.feed("e\u0301\u0302");
                            screen.feed("\x1B[3J");
                        }),
              1.0)
        << "marks in a scrollback that is cleared";
    EXPECT_LE(mebibytes(24, 80,
                        [](TerminalScreen& screen) {
                            for (int count = 0; count < 3'000; ++count) {
                                screen.resize(3 + count % 90, 10 + count * 7 % 400);
                                screen.feed("some text that is longer than ten columns\r\n");
                            }
                        }),
              12.0)
        << "resizes";
}

TEST(ScreenMemory, NoiseIsBounded) {
    if (isSanitized) GTEST_SKIP() << "a sanitizer's allocator does not tell";
    // Escapes often enough that sequences of every kind begin, and get lost.
    std::mt19937 random(20'261'123);
    EXPECT_LE(mebibytes(24, 80,
                        [&random](TerminalScreen& screen) {
                            std::array<char, 1 << 16> noise;
                            for (int piece = lengthOf(100, 16'000); piece > 0; --piece) {
                                for (char& byte : noise)
                                    byte = random() % 16 == 0 ? '\x1B' : static_cast<char>(random());
                                screen.feed({noise.data(), noise.size()});
                            }
                        }),
              40.0);
}

}  // namespace
}  // namespace orvo::test
