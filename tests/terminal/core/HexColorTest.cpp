#include "appearance/HexColor.h"

#include <gtest/gtest.h>

namespace orvo::test {
namespace {

TEST(HexColor, ReadsTheNumberBetweenWhatIsNoLetterOrDigit) {
    const struct {
        std::string_view text;
        std::string_view color;
    } cases[] = {
        {"00d9ff", "00D9FF"},
        {"#00D9FF", "00D9FF"},
        {"  #00D9FF;\n", "00D9FF"},
        {"\u201C00D9FF\u201D", "00D9FF"},
        {"\u00A000D9FF\u3000", "00D9FF"},
        {"FF", "0000FF"},
        {"AB00D9FF", "00D9FF"},
        {"FFFFFFFFFFFFFFFF", "FFFFFF"},
        {"1FFFFFFFFFFFFFFFF", "000000"},
        {"00D9F", "000D9F"},
    };
    for (const auto& [text, color] : cases) {
        EXPECT_EQ(hexOf(colorFromHex(text)), color) << text;
    }
}

TEST(HexColor, AMalformedTextIsBlack) {
    for (const std::string_view text : {"", "#", "00D9FG", "00 D9FF", "-", "0x00D9FF", "\u00E900D9FF",
                                        "00D9FF\u0661", "\uFF10\uFF10D9FF", "\x80"}) {
        EXPECT_EQ(colorFromHex(text), Rgb()) << text;
    }
}

}  // namespace
}  // namespace orvo::test
