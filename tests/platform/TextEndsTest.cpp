#include "platform/textEnds.h"

#include <gtest/gtest.h>

namespace orvo {
namespace {

TEST(FirstCharacters, CountsWhatAPersonCounts) {
    const struct {
        const char* text;
        int count;
        const char* first;
    } cases[] = {
        {"", 3, ""},
        {"abc", 3, "abc"},
        {"abcd", 3, "abc"},
        {"e\u0301e\u0301e\u0301e\u0301", 2, "e\u0301e\u0301"},
        {"👩‍👩‍👧‍👦👍🏽🇩🇪x", 3, "👩‍👩‍👧‍👦👍🏽🇩🇪"},
        {"a\r\nb", 2, "a\r\n"},
        {"🛰🛰🛰", 2, "🛰🛰"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(firstCharacters(QString::fromUtf8(c.text), c.count), QString::fromUtf8(c.first)) << c.text;
    }
}

}  // namespace
}  // namespace orvo
