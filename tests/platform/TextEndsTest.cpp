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

TEST(TextEnds, AreCutBetweenCharacters) {
    const QString family = QStringLiteral("\U0001F469\u200D\U0001F467");
    EXPECT_EQ(lastCharacters(u'a' + family.repeated(3), 2), family.repeated(2));
    EXPECT_EQ(lastCharacters(family, 5), family);
    EXPECT_EQ(lastBytes(QStringLiteral("x\u20ac\u20ac"), 5), QStringLiteral("\u20ac"));
}

}  // namespace
}  // namespace orvo
